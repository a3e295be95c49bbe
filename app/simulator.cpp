#include "app/brimletapp.h"
#include "app/commandline.h"
#include "app/linuxapp.h"
#include "app/simulatorconsole.h"
#include "creative/creativeimagecache.h"
#include "host/notch.h"
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

std::unique_ptr<SecretStore> secretStoreOf(const Machine& machine) {
    if (machine.secretStore == MachineSecretStore::Memory) {
        return std::make_unique<MemorySecretStore>();
    }
    return std::make_unique<LibsecretStore>();
}

/// Keeps the painted notch where the described machine has one.
void drawNotch(NotchWindow& window, const Machine& machine, const Screens& screens) {
    window.place(machine.drawNotch ? notchOf(builtInScreen(screens)) : std::nullopt,
                 simulatedPrimaryGeometry(machine));
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
    // Before the application object, which ends a program without a display in its own words.
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
    // A name of its own, so that it does not keep the user's own Brimlet from running.
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

    QtScreens realScreens;
    LinuxWorkspace realWorkspace;
    const LinuxBundle realBundle(QCoreApplication::applicationFilePath());
    const XdgCachesFolder realCachesFolder;
    LinuxReduceMotion realReduceMotion;

    SimulatedScreens screens(file, realScreens);
    SimulatedWorkspace workspace(file, realWorkspace);
    SimulatedBundle bundle(file, realBundle);
    const SimulatedCachesFolder cachesFolder(file, realCachesFolder);
    SimulatedReduceMotion reduceMotion(file, realReduceMotion);
    const auto secrets = secretStoreOf(file.machine());
    QtClock realClock;
    SimulatedClock clock(realClock, file.machine().speed);
    SimulatedHttpClient http(std::make_unique<CurlHttpClient>(), file.machine().speed);
    TrayStatusItem statusItem;

    NotchWindow notch;
    const auto redrawNotch = [&] { drawNotch(notch, file.machine(), screens); };
    QObject::connect(&file, &MachineFile::changed, &notch, redrawNotch);
    redrawNotch();

    SharedPorts<ImagePorts>::set({http, cachesFolder});
    const CreativeEnvironment environment{CreativeImageCache::shared(), clock, reduceMotion};
    const auto primary = [&file] { return simulatedPrimaryGeometry(file.machine()); };
    BrimletApp app({screens, workspace, *secrets, http, bundle, clock},
                   {screens, workspace, overlayWindowFactory(primary, environment)},
                   {statusItem, clock, menuWindowFactory(primaryGeometry, environment)});
    obeyRequests(instance, app);

    QObject::connect(app.store().get(), &HostStore::overlayNeedsRender, &notch,
                     &NotchWindow::bringForward);

    std::unique_ptr<SimulatorConsole> console;
    if (commandLine.isConsoleWanted) {
        console = std::make_unique<SimulatorConsole>(app, cachesFolder, reduceMotion);
    }
    followDesktop(*HostStore::shared(), realWorkspace);
    return app.run();
}
