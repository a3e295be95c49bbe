#pragma once

#include "platform/screens.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// The first screen, in the system's order, for which `isBuiltIn` returns true. `isBuiltIn` gets 0
/// for a screen without a number.
[[nodiscard]] std::optional<Screen>
builtInScreen(const std::vector<Screen>& screens,
              const std::function<bool(std::uint32_t displayNumber)>& isBuiltIn);

/// The same for the current screens.
[[nodiscard]] std::optional<Screen> builtInScreen(const Screens& screens);

/// Whether there is a screen with a usable strip on each side of a gap of more than 20 points.
[[nodiscard]] bool hasNotch(const std::optional<Screen>& builtIn);

} // namespace brimlet
