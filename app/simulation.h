#pragma once

#include "app/wiring.h"
#include "platform/simulated/memorysecretstore.h"
#include "platform/simulated/notchwindow.h"
#include "platform/simulated/simulatedclock.h"
#include "platform/simulated/simulatedhttpclient.h"
#include "platform/simulated/simulatedports.h"

#include <QRectF>

#include <functional>
#include <memory>
#include <optional>

namespace brimlet {

struct CommandLine;
class SimulatorConsole;

// What the simulators of all systems share.

/// Reads the command line and checks the machine file. Call it before the application object is
/// created, since without a display that ends the program with Qt's own message. Otherwise as
/// `readCommandLine`.
[[nodiscard]] std::optional<int> readSimulatorCommandLine(int argc, char* argv[],
                                                          CommandLine& commandLine);

/// Loads the file and reports its later errors. False, after a line on stderr, if it is no machine
/// file.
[[nodiscard]] bool loadMachine(MachineFile& file);

/// The ports of the described machine, over those of the real one. The file and the real ports
/// outlive it.
class SimulatedSystem final {
public:
    /// `http` is the real client, and used in place of `real.http`.
    SimulatedSystem(const MachineFile& file, const SystemPorts& real,
                    std::unique_ptr<HttpClient> http,
                    MachinePlace place = MachinePlace::AsDescribed);

    /// The status item and the windows are the real ones.
    [[nodiscard]] SystemPorts ports();

private:
    SystemPorts m_real;
    SimulatedScreens m_screens;
    SimulatedWorkspace m_workspace;
    MemorySecretStore m_memory;
    SecretStore& m_secrets;
    SimulatedBundle m_bundle;
    SimulatedCachesFolder m_cachesFolder;
    SimulatedReduceMotion m_reduceMotion;
    SimulatedClock m_clock;
    SimulatedHttpClient m_http;
};

/// Keeps the painted notch where the described machine has one. `primaryGeometry` returns the
/// primary screen's current geometry in Qt's space. All of them outlive the main loop.
void followNotch(NotchWindow& notch, const MachineFile& file, Screens& screens,
                 std::function<QRectF()> primaryGeometry);

/// Null where none is wanted. The ports outlive it.
[[nodiscard]] std::unique_ptr<SimulatorConsole>
makeConsole(const CommandLine& commandLine, BrimletApp& app, const SystemPorts& ports);

} // namespace brimlet
