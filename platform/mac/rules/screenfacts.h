#pragma once

#include "platform/rect.h"

#include <cstdint>
#include <optional>

namespace brimlet {

/// The display number in a screen's description; absent when there is none, or when it is anything
/// but a whole number of 32 bits.
[[nodiscard]] std::optional<std::uint32_t> displayNumber(const std::optional<double>& described);

/// The strip beside a notch. AppKit says "none" with an empty rectangle, wherever that lies.
[[nodiscard]] std::optional<Rect> stripBesideNotch(const Rect& area);

} // namespace brimlet
