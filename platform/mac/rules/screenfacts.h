#pragma once

#include "platform/rect.h"

#include <cstdint>
#include <optional>

namespace brimlet {

/// The display number from a screen's device description; absent when the description has none or
/// when it is not an unsigned whole number of 32 bits.
[[nodiscard]] std::optional<std::uint32_t> displayNumber(const std::optional<double>& described);

/// The auxiliary area beside a notch; absent when it is empty, which is AppKit's value for a screen
/// without a notch.
[[nodiscard]] std::optional<Rect> stripBesideNotch(const Rect& area);

} // namespace brimlet
