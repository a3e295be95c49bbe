#pragma once

// What wayland-scanner makes of the protocols in use. For sources only; headers declare the types.

#include "platform/wayland/waylandlibrary.h"

#include "client-cursor-shape.h"
#include "client-fractional-scale-v1.h"
#include "client-viewporter.h"
#include "client-wayland.h"
#include "client-wlr-layer-shell.h"
#include "client-xdg-activation-v1.h"
#include "client-xdg-output-unstable-v1.h"
#include "client-xdg-shell.h"

namespace brimlet {

/// For an event that has no meaning here.
inline constexpr auto kIgnoreEvent = [](auto...) {};

} // namespace brimlet
