#pragma once

// What wayland-scanner makes of the protocols in use. For sources only; headers declare the types.

#include "platform/wayland/waylandlibrary.h"

#include "cursor-shape-client.h"
#include "fractional-scale-v1-client.h"
#include "viewporter-client.h"
#include "wayland-client.h"
#include "wlr-layer-shell-client.h"
#include "xdg-activation-v1-client.h"
#include "xdg-output-unstable-v1-client.h"
#include "xdg-shell-client.h"

namespace brimlet {

/// For an event that has no meaning here.
inline constexpr auto kIgnoreEvent = [](auto...) {};

} // namespace brimlet
