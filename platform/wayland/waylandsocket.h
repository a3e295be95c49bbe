#pragma once

namespace brimlet {

/// A socket connected to the compositor named by WAYLAND_DISPLAY, which the caller owns; -1 where
/// there is none, or it accepts no more connections. Needs no application object. libwayland would
/// try "wayland-0" where WAYLAND_DISPLAY is unset, and would wait for a compositor that is stuck.
[[nodiscard]] int connectToCompositor();

/// Whether that succeeds.
[[nodiscard]] bool compositorAccepts();

} // namespace brimlet
