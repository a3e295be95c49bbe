#include "app/brimletapp.h"
#include "app/commandline.h"
#include "app/linuxapp.h"
#include "creative/creativeimagecache.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/linux/libsecretstore.h"
#include "platform/linux/linuxbundle.h"
#include "platform/linux/linuxreducemotion.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/qtscreens.h"
#include "platform/linux/singleinstance.h"
#include "platform/linux/traystatusitem.h"
#include "platform/linux/xdgcachesfolder.h"
#include "platform/qt/desktopscreens.h"
#include "platform/qt/qtclock.h"
#include "platform/sharedports.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    using namespace brimlet;

    CommandLine commandLine;
    if (const auto exitCode =
            readCommandLine(argumentsOf(argc, argv), Program::Linux, commandLine)) {
        return *exitCode;
    }
    SingleInstance instance(QStringLiteral("app.brimlet.host"));
    if (commandLine.request) {
        const QCoreApplication application(argc, argv);
        askRunningProgram(instance, *commandLine.request);
    }
    if (!prepareLinuxApplication()) {
        return 1;
    }
    const QApplication application(argc, argv);
    configureLinuxApplication();
    if (const auto answer = instance.claim()) {
        return exitCodeOf(*answer);
    }

    QtScreens screens;
    LinuxWorkspace workspace;
    LibsecretStore secrets;
    LinuxBundle bundle(QCoreApplication::applicationFilePath());
    const XdgCachesFolder cachesFolder;
    LinuxReduceMotion reduceMotion;
    QtClock clock;
    CurlHttpClient http;
    TrayStatusItem statusItem;

    SharedPorts<ImagePorts>::set({http, cachesFolder});
    const CreativeEnvironment environment{CreativeImageCache::shared(), clock, reduceMotion};
    BrimletApp app({screens, workspace, secrets, http, bundle, clock},
                   {screens, workspace, overlayWindowFactory(primaryGeometry, environment)},
                   {statusItem, clock, menuWindowFactory(primaryGeometry, environment)});
    obeyRequests(instance, app);
    followDesktop(*HostStore::shared(), workspace);
    return app.run();
}
