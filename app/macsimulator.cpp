#include "app/commandline.h"
#include "app/macapp.h"
#include "app/simulation.h"
#include "app/simulatorconsole.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/mac/macbundle.h"
#include "platform/mac/macreducemotion.h"
#include "platform/mac/macscreens.h"
#include "platform/mac/macsecretstore.h"
#include "platform/mac/macstatusitem.h"
#include "platform/mac/macworkspace.h"
#include "platform/qt/desktopscreens.h"
#include "platform/qt/instancelock.h"
#include "platform/qt/pictureprocess.h"
#include "platform/qt/qtcachesfolder.h"
#include "platform/qt/qtclock.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    using namespace brimlet;

    CommandLine commandLine;
    if (const auto exitCode = readSimulatorCommandLine(argc, argv, commandLine)) {
        return *exitCode;
    }
    MacBundle bundle;
    const QtCachesFolder cachesFolder;
    InstanceLock instance(lockFile(bundle, cachesFolder));
    prepareMacApplication();
    const QApplication application(argc, argv);
    configureApplication();
    if (const auto answer = instance.claim()) {
        return exitCodeOf(*answer);
    }
    MachineFile file(commandLine.machineFile);
    if (!loadMachine(file)) {
        return 2;
    }

    MacScreens screens;
    MacWorkspace workspace;
    MacSecretStore secrets;
    MacReduceMotion reduceMotion;
    QtClock clock;
    auto http = std::make_unique<CurlHttpClient>();
    PictureProcess pictures(pictureProgram());
    MacStatusItem statusItem;

    const SystemPorts real{screens,
                           workspace,
                           secrets,
                           *http,
                           pictures,
                           bundle,
                           clock,
                           cachesFolder,
                           reduceMotion,
                           statusItem,
                           makeMacOverlayWindow,
                           makeMacMenuWindow};
    SimulatedSystem simulated(file, real, std::move(http), MachinePlace::AtRealTop);
    const SystemPorts ports = simulated.ports();
    // Qt gives windows of this kind a level above the overlay panel's, so it is never raised, which
    // would activate the program.
    NotchWindow notch;
    BrimletApp app = makeApp(ports);
    handleRequests(instance, app);
    followNotch(notch, file, ports.screens, primaryGeometry);
    const auto console = makeConsole(commandLine, app, ports);
    openWhenReopened(app);
    return app.run();
}
