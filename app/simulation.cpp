#include "app/simulation.h"

#include "app/commandline.h"
#include "app/simulatorconsole.h"
#include "host/notch.h"
#include "platform/qt/desktopgeometry.h"

#include <QTimer>

#include <chrono>
#include <cstdio>
#include <utility>

namespace brimlet {
namespace {

/// Until the first capsule is usually shown.
constexpr std::chrono::milliseconds kNotchDelay(100);

void say(const QString& complaint) {
    std::fputs(qUtf8Printable(QStringLiteral("brimlet-simulator: %1\n").arg(complaint)), stderr);
}

} // namespace

std::optional<int> readSimulatorCommandLine(int argc, char* argv[], CommandLine& commandLine) {
    if (const auto exitCode =
            readCommandLine(argumentsOf(argc, argv), Program::Simulator, commandLine)) {
        return exitCode;
    }
    if (const QString complaint = MachineFile::errorIn(commandLine.machineFile);
        !complaint.isEmpty()) {
        say(complaint);
        return 2;
    }
    return std::nullopt;
}

bool loadMachine(MachineFile& file) {
    QObject::connect(&file, &MachineFile::failed, &file, say);
    const QString complaint = file.load();
    if (!complaint.isEmpty()) {
        say(complaint);
    }
    return complaint.isEmpty();
}

SimulatedSystem::SimulatedSystem(const MachineFile& file, const SystemPorts& real,
                                 std::unique_ptr<HttpClient> http, MachinePlace place)
    : m_real(real)
    , m_screens(file, real.screens, place)
    , m_workspace(file, real.workspace)
    , m_secrets(file.machine().secretStore == MachineSecretStore::Memory
                    ? static_cast<SecretStore&>(m_memory)
                    : real.secrets)
    , m_bundle(file, real.bundle)
    , m_cachesFolder(file, real.cachesFolder)
    , m_reduceMotion(file, real.reduceMotion)
    , m_clock(real.clock, file.machine().speed)
    , m_http(std::move(http), file.machine().speed) {}

SystemPorts SimulatedSystem::ports() {
    return {m_screens,
            m_workspace,
            m_secrets,
            m_http,
            m_real.pictures,
            m_bundle,
            m_clock,
            m_cachesFolder,
            m_reduceMotion,
            m_real.statusItem,
            m_real.makeOverlayWindow,
            m_real.makeMenuWindow};
}

void followNotch(NotchWindow& notch, const MachineFile& file, Screens& screens,
                 std::function<QRectF()> primaryGeometry) {
    const auto redraw = [&notch, &file, &screens, primaryGeometry = std::move(primaryGeometry)] {
        const auto place =
            file.machine().drawNotch ? notchOf(builtInScreen(screens)) : std::nullopt;
        notch.place(place ? std::optional(toQt(*place, primaryGeometry()).toRect()) : std::nullopt);
    };
    QObject::connect(&file, &MachineFile::changed, &notch, redraw);
    screens.observeChanges(redraw);
    // Later, because a real notch costs the start no time.
    QTimer::singleShot(kNotchDelay, &notch, redraw);
}

std::unique_ptr<SimulatorConsole> makeConsole(const CommandLine& commandLine, BrimletApp& app,
                                              const SystemPorts& ports) {
    return commandLine.isConsoleWanted
               ? std::make_unique<SimulatorConsole>(app, ports.cachesFolder, ports.reduceMotion)
               : nullptr;
}

} // namespace brimlet
