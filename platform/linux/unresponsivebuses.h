#pragma once

#include <QProcessEnvironment>

namespace brimlet {

/// Probes the session bus and the system bus. The address of a bus that does not answer within a
/// second is replaced in this process's environment by an invalid one, so later connections fail at
/// once instead of blocking for 25 seconds or without end. Call it before the application object is
/// made and before anything else uses a bus. Blocks for up to 1.4 seconds.
void disableUnresponsiveBuses();

/// The environment for child processes: this process's own, with the original bus addresses.
[[nodiscard]] QProcessEnvironment childEnvironment();

} // namespace brimlet
