// The simulated program with another picture in its overlay: the same wiring, store, requests and
// window, and inside a view that repaints everything sixty times a second.

#include "app/brimletapp.h"
#include "app/commandline.h"
#include "app/linuxapp.h"
#include "bench/naiveview.h"
#include "creative/creativeimagecache.h"
#include "host/notch.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/linux/linuxbundle.h"
#include "platform/linux/linuxreducemotion.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/qtscreens.h"
#include "platform/linux/traystatusitem.h"
#include "platform/linux/x11overlaywindow.h"
#include "platform/linux/xdgcachesfolder.h"
#include "platform/qt/qtclock.h"
#include "platform/simulated/memorysecretstore.h"
#include "platform/simulated/notchwindow.h"
#include "platform/simulated/simulatedports.h"

#include <QApplication>

#include <cstdio>

namespace {

using namespace brimlet;

OverlayWindowFactory naiveWindowFactory(const std::function<QRectF()>& primaryGeometry) {
    return [primaryGeometry](OverlayRuntime& runtime) {
        auto window = std::make_unique<X11OverlayWindow>(std::make_unique<NaiveView>(runtime),
                                                         primaryGeometry);
        // Nothing takes clicks; what is painted matters only without a compositor.
        window->setShapes(QRegion(), QRegion(0, 0, 1024, 64));
        return window;
    };
}

} // namespace

int main(int argc, char* argv[]) {
    CommandLine commandLine;
    if (const auto exitCode =
            readCommandLine(argumentsOf(argc, argv), Program::Simulator, commandLine)) {
        return *exitCode;
    }
    if (!prepareLinuxApplication()) {
        return 1;
    }
    const QApplication application(argc, argv);
    configureLinuxApplication();
    MachineFile file(commandLine.machineFile);
    if (const QString complaint = file.load(); !complaint.isEmpty()) {
        std::fputs(qUtf8Printable(QStringLiteral("bench-naive: %1\n").arg(complaint)), stderr);
        return 2;
    }

    QtScreens realScreens;
    LinuxWorkspace realWorkspace;
    const LinuxBundle realBundle(QCoreApplication::applicationFilePath());
    SimulatedScreens screens(file, realScreens);
    SimulatedWorkspace workspace(file, realWorkspace);
    SimulatedBundle bundle(file, realBundle);
    MemorySecretStore secrets;
    QtClock clock;
    CurlHttpClient http;

    TrayStatusItem statusItem;
    const XdgCachesFolder cachesFolder;
    LinuxReduceMotion reduceMotion;
    CreativeImageCache::setSharedPorts({http, cachesFolder});
    const CreativeEnvironment environment{CreativeImageCache::shared(), clock, reduceMotion};

    const auto primary = [&file] { return simulatedPrimaryGeometry(file.machine()); };
    NotchWindow notch;
    notch.place(notchOf(builtInScreen(screens)), primary());
    BrimletApp app({screens, workspace, secrets, http, bundle, clock},
                   {screens, workspace, naiveWindowFactory(primary)},
                   {statusItem, clock, menuWindowFactory(QtScreens::primaryGeometry, environment)});
    followDesktop(*HostStore::shared(), realWorkspace);
    return app.run();
}
