#pragma once

#include <QByteArray>

#include <nlohmann/json.hpp>

#include <optional>

namespace brimlet {

using Json = nlohmann::json;

/// Parses one JSON text: strict RFC 8259 in valid UTF-8, any value at the top level. Absent when
/// the text is anything else. A whole number that fits 64 bits becomes exactly that integer,
/// however it is written (1e3, 1234.0). Every other number becomes 0.5, a placeholder that no field
/// accepts. Of duplicate keys the last one counts.
[[nodiscard]] std::optional<Json> parseJson(const QByteArray& text);

} // namespace brimlet
