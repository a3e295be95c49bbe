#pragma once

#include "platform/screens.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// The first screen, in the system's order, that the system calls built in. A screen without a
/// number is asked about as display 0, not passed over.
[[nodiscard]] std::optional<Screen>
builtInScreen(const std::vector<Screen>& screens,
              const std::function<bool(std::uint32_t displayNumber)>& isBuiltIn);

/// The same, over the screens of this moment.
[[nodiscard]] std::optional<Screen> builtInScreen(const Screens& screens);

/// Whether the built-in screen has strips on both sides of a gap strictly wider than 20 points.
[[nodiscard]] bool hasNotch(const std::optional<Screen>& builtIn);

} // namespace brimlet
