#include "app/brimletapp.h"
#include "app/linuxapp.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/linux/libsecretstore.h"
#include "platform/linux/linuxbundle.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/qtscreens.h"
#include "platform/qt/qtclock.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    using namespace brimlet;

    CommandLine commandLine;
    if (const auto exitCode = readCommandLine(argumentsOf(argc, argv), false, commandLine)) {
        return *exitCode;
    }
    prepareLinuxApplication();
    const QApplication application(argc, argv);
    configureLinuxApplication();

    QtScreens screens;
    LinuxWorkspace workspace;
    LibsecretStore secrets;
    LinuxBundle bundle(QCoreApplication::applicationFilePath());
    QtClock clock;
    CurlHttpClient http;

    BrimletApp app({screens, workspace, secrets, http, bundle, clock},
                   {screens, workspace, overlayWindowFactory(QtScreens::primaryGeometry)});
    followPanelPower(*HostStore::shared(), workspace);
    return app.run();
}
