#include "app/commandline.h"
#include "app/displayloss.h"
#include "app/linuxapp.h"
#include "app/simulatorconsole.h"
#include "host/notch.h"
#include "platform/linux/singleinstance.h"
#include "platform/simulated/memorysecretstore.h"
#include "platform/simulated/notchwindow.h"
#include "platform/simulated/simulatedclock.h"
#include "platform/simulated/simulatedhttpclient.h"
#include "platform/simulated/simulatedports.h"

#include <QApplication>

#include <cstdio>
#include <memory>

namespace {

using namespace brimlet;

/// Places the painted notch where the described machine has one; none beside a native overlay,
/// since its window is X11's and would take clicks there.
void drawNotch(NotchWindow& window, const Machine& machine, const Screens& screens,
               LinuxAdapters& real) {
    const bool isDrawn = machine.drawNotch && !real.wayland.choice().isNative;
    window.place(isDrawn ? notchOf(builtInScreen(screens)) : std::nullopt,
                 simulatedPrimaryGeometry(machine, real.primaryGeometry()));
}

} // namespace

int main(int argc, char* argv[]) {
    CommandLine commandLine;
    if (const auto exitCode =
            readCommandLine(argumentsOf(argc, argv), Program::Simulator, commandLine)) {
        return *exitCode;
    }
    const auto say = [](const QString& complaint) {
        std::fputs(qUtf8Printable(QStringLiteral("brimlet-simulator: %1\n").arg(complaint)),
                   stderr);
    };
    // Checked before the application object is created, since without a display that ends the
    // program with Qt's own message.
    if (const QString complaint = MachineFile::errorIn(commandLine.machineFile);
        !complaint.isEmpty()) {
        say(complaint);
        return 2;
    }
    if (!prepareLinuxApplication()) {
        return 1;
    }
    const QApplication application(argc, argv);
    configureLinuxApplication();
    // Another name than the product's: both can run at once.
    SingleInstance instance(QStringLiteral("app.brimlet.host.Simulator"));
    if (const auto answer = instance.claim()) {
        return exitCodeOf(*answer);
    }

    MachineFile file(commandLine.machineFile);
    QObject::connect(&file, &MachineFile::failed, &file, say);
    if (const QString complaint = file.load(); !complaint.isEmpty()) {
        say(complaint);
        return 2;
    }

    LinuxAdapters real;
    if (!real.canShowOverlay()) {
        return 1;
    }
    SimulatedScreens screens(file, real.screens());
    SimulatedWorkspace workspace(file, real.workspace);
    MemorySecretStore memory;
    SecretStore& secrets = file.machine().secretStore == MachineSecretStore::Memory
                               ? static_cast<SecretStore&>(memory)
                               : real.secrets;
    SimulatedBundle bundle(file, real.bundle);
    const SimulatedCachesFolder cachesFolder(file, real.cachesFolder);
    SimulatedReduceMotion reduceMotion(file, real.reduceMotion);
    SimulatedClock clock(real.clock, file.machine().speed);
    SimulatedHttpClient http(std::move(real.http), file.machine().speed);

    NotchWindow notch;
    const auto redrawNotch = [&] { drawNotch(notch, file.machine(), screens, real); };
    QObject::connect(&file, &MachineFile::changed, &notch, redrawNotch);
    redrawNotch();

    BrimletApp app =
        makeApp({screens, workspace, secrets, http, bundle, clock, cachesFolder, reduceMotion,
                 real.statusItem, real.overlayWindowFactory([&] {
                     return simulatedPrimaryGeometry(file.machine(), real.primaryGeometry());
                 }),
                 makeX11MenuWindow});
    handleRequests(instance, app);

    QObject::connect(app.store().get(), &HostStore::overlayNeedsRender, &notch,
                     &NotchWindow::bringForward);

    std::unique_ptr<SimulatorConsole> console;
    if (commandLine.isConsoleWanted) {
        console = std::make_unique<SimulatorConsole>(app, cachesFolder, reduceMotion);
    }
    followDesktop(*app.store(), real);
    return runAcrossDisplayLoss(app, {argv, argv + argc});
}
