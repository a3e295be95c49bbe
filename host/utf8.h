#pragma once

#include <QString>

#include <optional>
#include <string_view>

namespace brimlet {

/// The decoded text; absent when the bytes are not valid UTF-8. Unlike QString::fromUtf8 it keeps
/// a leading U+FEFF.
[[nodiscard]] std::optional<QString> textFromUtf8(std::string_view bytes);

} // namespace brimlet
