#pragma once

#include "platform/qt/menuplacement.h"

#include <vector>

namespace brimlet {

/// The screens of the X server on which the panel may open, the primary one first, with the areas
/// that bars leave free as far as X programs can know: not in sway and other wlroots compositors.
[[nodiscard]] std::vector<MenuScreen> x11MenuScreens();

} // namespace brimlet
