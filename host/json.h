#pragma once

#include <QByteArray>

#include <nlohmann/json.hpp>

#include <optional>

namespace brimlet {

using Json = nlohmann::json;

/// Reads one JSON text: strict RFC 8259 in checked UTF-8, a scalar at the top allowed. Absent when
/// it is anything else. A whole number of 64 bits is kept exactly, as an integer however it is
/// written (1e3, 1234.0); every other number with a point, a power or too many digits is valid and
/// kept as some fraction. Of doubled keys the last one counts.
[[nodiscard]] std::optional<Json> parseJson(const QByteArray& text);

} // namespace brimlet
