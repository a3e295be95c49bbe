#pragma once

#include <functional>

namespace brimlet {

/// From now on the signal calls `block` in the main loop instead of ending the process. Needs the
/// application object. At most one block a signal; several of one kind that come at once may be
/// told once. Programs started from here meet the signal as usual.
void onUnixSignal(int signal, std::function<void()> block);

/// From now on SIGTERM and SIGINT end the application's main loop instead of the process.
void quitOnTerminationSignals();

} // namespace brimlet
