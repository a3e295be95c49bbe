#pragma once

#include <string>
#include <vector>

namespace brimlet {

class BrimletApp;

// Under Wayland a compositor may end and be started again. XWayland ends with it, and Qt then ends
// any program that it serves. So this program replaces itself: the same process starts from the
// beginning, and waits for the compositor.

/// Whether this is such a start after the loss of the display.
[[nodiscard]] bool isStartAfterDisplayLoss();

/// Waits until the display servers that are named by the environment accept connections again:
/// for the compositor up to a minute, then for XWayland up to ten seconds. False without a
/// compositor. Call it before the application object is created.
[[nodiscard]] bool awaitDisplay();

/// Runs the application until it quits and returns its exit code. After a loss it goes on with the
/// pause that the host had asked for, and removes all traces of the loss from the environment.
/// Where WAYLAND_DISPLAY is set and Qt ends the process meanwhile, it starts again with these
/// arguments, the program's name first.
[[nodiscard]] int runAcrossDisplayLoss(BrimletApp& app, std::vector<std::string> arguments);

} // namespace brimlet
