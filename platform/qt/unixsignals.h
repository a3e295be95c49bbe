#pragma once

#include <functional>

namespace brimlet {

/// From now on the signal calls `block` in the main loop instead of ending the process. Needs the
/// application object. A second call for the same signal replaces the block; signals that arrive in
/// quick succession may lead to one call. Child processes have the default handlers.
void onUnixSignal(int signal, std::function<void()> block);

/// From now on SIGTERM and SIGINT quit the application's main loop instead of killing the process.
void quitOnTerminationSignals();

} // namespace brimlet
