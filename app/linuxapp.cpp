#include "app/linuxapp.h"

#include "app/brimletapp.h"
#include "app/commandline.h"
#include "menu/hostmenuview.h"
#include "menu/menuscroll.h"
#include "overlay/overlayview.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/singleinstance.h"
#include "platform/linux/startupmemory.h"
#include "platform/linux/unresponsivebuses.h"
#include "platform/linux/x11.h"
#include "platform/linux/x11menuwindow.h"
#include "platform/linux/x11overlaywindow.h"
#include "platform/linux/x11watch.h"
#include "platform/onceperturn.h"
#include "platform/qt/unixsignals.h"

#include <QApplication>
#include <QSessionManager>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <utility>

namespace brimlet {
namespace {

/// What the environment said where our own settings stand in it, by name; null where it said
/// nothing.
std::map<const char*, QByteArray> environmentBefore;

/// Sets a variable for Qt alone: it is put back once the application object has read it.
void setForQt(const char* name, const QByteArray& value) {
    environmentBefore[name] = qgetenv(name);
    qputenv(name, value);
}

/// The browser that a click starts should find the user's own settings.
void restoreEnvironment() {
    for (const auto& [name, value] : std::exchange(environmentBefore, {})) {
        if (value.isNull()) {
            qunsetenv(name);
        } else {
            qputenv(name, value);
        }
    }
}

} // namespace

bool prepareLinuxApplication() {
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform.isEmpty() || platform.startsWith("wayland") || platform.startsWith("xcb")) {
        if (!x11::canConnect()) {
            const QByteArray display = qgetenv("DISPLAY");
            std::fprintf(stderr,
                         "brimlet: There is no X server at DISPLAY=%s. Start it from a desktop; "
                         "under Wayland that needs XWayland.\n",
                         display.constData());
            return false;
        }
        setForQt("QT_QPA_PLATFORM", "xcb");
    }
    disableUnresponsiveBuses();
    QApplication::setStyle(QStringLiteral("Fusion"));
    // Through shared memory each paint would wait for the X server to have read the one before it.
    // What a scroll paints is a few kilobytes, which are sent faster than waited for.
    setForQt("QT_XCB_NO_MITSHM", "1");
    return true;
}

void configureLinuxApplication() {
    restoreEnvironment();
    QCoreApplication::setApplicationName(QStringLiteral("brimlet"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMLET_VERSION));
    // Hiding the overlay is everyday life, not the end.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    quitOnTerminationSignals();
    // The desktop's autostart entry starts it with the next session, not the session manager.
    QObject::connect(qApp, &QGuiApplication::saveStateRequest, qApp, [](QSessionManager& manager) {
        manager.setRestartHint(QSessionManager::RestartNever);
    });
    // By then the capsules are shown and fonts and pictures found.
    constexpr std::chrono::seconds kStartIsOver{2};
    QTimer::singleShot(kStartIsOver, Qt::VeryCoarseTimer, qApp, trimStartupMemory);
}

OverlayWindowFactory overlayWindowFactory(const std::function<QRectF()>& primaryGeometry,
                                          const CreativeEnvironment& environment) {
    return [primaryGeometry, environment](OverlayRuntime& runtime) {
        auto content = std::make_unique<OverlayView>(runtime, environment);
        const auto* const view = content.get();
        auto window = std::make_unique<X11OverlayWindow>(std::move(content), primaryGeometry);
        QObject::connect(view, &OverlayView::regionsChanged, window.get(),
                         [view, target = window.get()] {
                             target->setRegions(view->clickable(), view->painted());
                         });
        return window;
    };
}

MenuWindowFactory menuWindowFactory(const std::function<QRectF()>& primaryGeometry,
                                    const CreativeEnvironment& environment) {
    return [primaryGeometry, environment](const std::shared_ptr<HostStore>& store) {
        auto menu = std::make_unique<HostMenuView>(store, environment);
        QObject::connect(menu.get(), &HostMenuView::quitRequested, qApp, &QCoreApplication::quit);
        return std::make_unique<X11MenuWindow>(std::make_unique<MenuScroll>(menu.release()),
                                               primaryGeometry);
    };
}

void obeyRequests(const SingleInstance& instance, BrimletApp& app) {
    QObject::connect(&instance, &SingleInstance::requested, qApp,
                     [&app](InstanceRequest request) { app.obey(request); });
}

void askRunningProgram(const SingleInstance& instance, InstanceRequest request) {
    disableUnresponsiveBuses();
    // Without destructors: Qt's bus thread may use objects that are destroyed already.
    std::quick_exit(exitCodeOf(instance.ask(request)));
}

void followDesktop(const HostStore& store, LinuxWorkspace& workspace) {
    // After the many changes of one reply, since the check itself may change the store.
    auto* const check = new OncePerTurn(
        [&workspace] {
            workspace.checkPanelPower();
            X11Watch::shared().drainEvents();
        },
        &workspace);
    QObject::connect(&store, &HostStore::objectWillChange, check, &OncePerTurn::schedule);
}

} // namespace brimlet
