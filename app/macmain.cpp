#include "app/commandline.h"
#include "app/macapp.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/mac/macbundle.h"
#include "platform/mac/macreducemotion.h"
#include "platform/mac/macscreens.h"
#include "platform/mac/macsecretstore.h"
#include "platform/mac/macstatusitem.h"
#include "platform/mac/macworkspace.h"
#include "platform/qt/instancelock.h"
#include "platform/qt/pictureprocess.h"
#include "platform/qt/qtcachesfolder.h"
#include "platform/qt/qtclock.h"

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
    configureApplication();
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
    PictureProcess pictures(pictureProgram());
    MacStatusItem statusItem;

    BrimletApp app =
        makeApp({screens, workspace, secrets, http, pictures, bundle, clock, cachesFolder,
                 reduceMotion, statusItem, makeMacOverlayWindow, makeMacMenuWindow});
    handleRequests(instance, app);
    openWhenReopened(app);
    return app.run();
}
