#include "app/brimletapp.h"
#include "app/commandline.h"
#include "app/macapp.h"
#include "creative/creativeimagecache.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/mac/macbundle.h"
#include "platform/mac/macreducemotion.h"
#include "platform/mac/macscreens.h"
#include "platform/mac/macsecretstore.h"
#include "platform/mac/macworkspace.h"
#include "platform/mac/rules/macstatusitem.h"
#include "platform/qt/instancelock.h"
#include "platform/qt/qtcachesfolder.h"
#include "platform/qt/qtclock.h"
#include "platform/sharedports.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    using namespace brimlet;

    CommandLine commandLine;
    if (const auto exitCode = readCommandLine(argumentsOf(argc, argv), Program::Mac, commandLine)) {
        return *exitCode;
    }
    MacBundle bundle;
    const QtCachesFolder cachesFolder;
    InstanceLock instance(lockFile(bundle, cachesFolder));
    if (commandLine.request) {
        return exitCodeOf(instance.ask(*commandLine.request));
    }
    prepareMacApplication();
    const QApplication application(argc, argv);
    configureMacApplication();
    if (commandLine.isSelfTestWanted) {
        return runSelfTest();
    }
    if (const auto answer = instance.claim()) {
        return exitCodeOf(*answer);
    }

    MacScreens screens;
    MacWorkspace workspace;
    MacSecretStore secrets;
    MacReduceMotion reduceMotion;
    QtClock clock;
    CurlHttpClient http;
    MacStatusItem statusItem;

    SharedPorts<ImagePorts>::set({http, cachesFolder});
    const CreativeEnvironment environment{CreativeImageCache::shared(), clock, reduceMotion};
    BrimletApp app({screens, workspace, secrets, http, bundle, clock},
                   {screens, workspace, overlayWindowFactory(environment)},
                   {statusItem, clock, menuWindowFactory(environment)});
    obeyRequests(instance, app);
    return app.run();
}
