#include "app/commandline.h"
#include "app/displayloss.h"
#include "app/linuxapp.h"
#include "app/simulation.h"
#include "app/simulatorconsole.h"
#include "platform/linux/singleinstance.h"
#include "platform/linux/x11watch.h"

#include <QApplication>

#include <cstdint>
#include <utility>

namespace {

using namespace brimlet;

/// Keeps the window above others, because nothing covers a real notch.
void keepInFront(NotchWindow& notch, const HostStore& store) {
    QObject::connect(&notch, &NotchWindow::placed, &notch, &QWidget::raise);
    // Only after other windows were shown or raised. Those of this program count too, because the
    // overlay raises itself. Raising this window changes the serial once more, which leads to one
    // more raise without effect.
    QObject::connect(&store, &HostStore::overlayNeedsRender, &notch,
                     [&notch, last = std::uint64_t{0}]() mutable {
                         const std::uint64_t serial = X11Watch::shared().stackingSerial();
                         if (std::exchange(last, serial) != serial) {
                             notch.raise();
                         }
                     });
}

} // namespace

int main(int argc, char* argv[]) {
    CommandLine commandLine;
    if (const auto exitCode = readSimulatorCommandLine(argc, argv, commandLine)) {
        return *exitCode;
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
    if (!loadMachine(file)) {
        return 2;
    }

    LinuxAdapters real;
    if (!real.canShowOverlay()) {
        return 1;
    }
    const auto primaryGeometry = [&] {
        return simulatedPrimaryGeometry(file.machine(), real.primaryGeometry());
    };
    const SystemPorts realPorts{real.screens(),
                                real.workspace,
                                real.secrets,
                                *real.http,
                                real.pictures,
                                real.bundle,
                                real.clock,
                                real.cachesFolder,
                                real.reduceMotion,
                                real.statusItem,
                                real.overlayWindowFactory(primaryGeometry),
                                makeX11MenuWindow};
    SimulatedSystem simulated(file, realPorts, std::move(real.http));
    const SystemPorts ports = simulated.ports();
    NotchWindow notch;
    BrimletApp app = makeApp(ports);
    handleRequests(instance, app);
    keepInFront(notch, *app.store());
    // None beside a native overlay, since its window is X11's and would take clicks there.
    if (!real.wayland.choice().isNative) {
        followNotch(notch, file, ports.screens, primaryGeometry);
    }
    const auto console = makeConsole(commandLine, app, ports);
    followDesktop(*app.store(), real);
    return runAcrossDisplayLoss(app, {argv, argv + argc});
}
