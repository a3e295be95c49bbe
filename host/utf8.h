#pragma once

#include <QString>

#include <optional>
#include <string_view>

namespace brimlet {

/// The text these bytes encode, every character of it; absent when they are not UTF-8.
/// QString::fromUtf8 would take a leading U+FEFF for a byte-order mark and drop it.
[[nodiscard]] std::optional<QString> textFromUtf8(std::string_view bytes);

} // namespace brimlet
