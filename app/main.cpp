#include "app/commandline.h"
#include "app/displayloss.h"
#include "app/linuxapp.h"
#include "app/linuxdiagnosis.h"
#include "platform/linux/singleinstance.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    using namespace brimlet;

    CommandLine commandLine;
    if (const auto exitCode =
            readCommandLine(argumentsOf(argc, argv), Program::Linux, commandLine)) {
        return *exitCode;
    }
    if (commandLine.isDiagnosisWanted) {
        printDiagnosis(argc, argv);
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
    if (const auto answer = instance.claim(commandLine.reason)) {
        return exitCodeOf(*answer);
    }

    LinuxAdapters desktop;
    if (!desktop.canShowOverlay()) {
        return 1;
    }
    BrimletApp app =
        makeApp({desktop.screens(), desktop.workspace, desktop.secrets, *desktop.http,
                 desktop.pictures, desktop.bundle, desktop.clock, desktop.cachesFolder,
                 desktop.reduceMotion, desktop.statusItem,
                 desktop.overlayWindowFactory([&desktop] { return desktop.primaryGeometry(); }),
                 makeX11MenuWindow},
                commandLine.reason);
    handleRequests(instance, app);
    followDesktop(*app.store(), desktop);
    return runAcrossDisplayLoss(app, {argv[0], "--autostart"});
}
