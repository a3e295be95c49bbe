#pragma once

#include <QProcessEnvironment>

namespace brimlet {

/// Asks the session bus and the system bus for a sign of life and takes those out of this process's
/// environment that give none within a second, so that all that would use them finds no bus at all.
/// Otherwise the first use would wait for half a minute, or for ever. Belongs before anything that
/// uses a bus, the application object included.
void leaveOutSilentBuses();

/// The environment for programs that are started from here, in which every bus is as it was found.
[[nodiscard]] QProcessEnvironment environmentForOthers();

} // namespace brimlet
