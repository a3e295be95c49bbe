#pragma once

namespace brimlet {

/// From now on SIGTERM and SIGINT end the application's main loop instead of the process. Needs
/// the application object. Programs started from here meet the signals as usual.
void quitOnTerminationSignals();

} // namespace brimlet
