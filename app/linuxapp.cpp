#include "app/linuxapp.h"

#include "app/commandline.h"
#include "app/displayloss.h"
#include "creative/continuouspaths.h"
#include "platform/linux/singleinstance.h"
#include "platform/linux/startupnotification.h"
#include "platform/linux/unresponsivebuses.h"
#include "platform/linux/x11.h"
#include "platform/linux/x11menuwindow.h"
#include "platform/linux/x11overlaywindow.h"
#include "platform/linux/x11watch.h"
#include "platform/onceperturn.h"
#include "platform/qt/desktopscreens.h"
#include "platform/wayland/waylandsocket.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QScreen>
#include <QSessionManager>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <utility>

namespace brimlet {
namespace {

/// The previous values of the variables that `setForQt` changed, by name; null for unset.
std::map<const char*, QByteArray> environmentBefore;

/// Sets a variable for Qt alone, until the application object has read it.
void setForQt(const char* name, const QByteArray& value) {
    environmentBefore[name] = qgetenv(name);
    qputenv(name, value);
}

/// So that a browser started by a click gets the user's own environment.
void restoreEnvironment() {
    for (const auto& [name, value] : std::exchange(environmentBefore, {})) {
        if (value.isNull()) {
            qunsetenv(name);
        } else {
            qputenv(name, value);
        }
    }
}

/// What the desktop expects this process to report at its start.
QByteArray startupId;

/// No X server was there at the start, so Qt uses another platform.
bool isWithoutX = false;

void sayThatXIsMissing() {
    std::fprintf(stderr,
                 "brimlet: There is no X server at DISPLAY=%s and no Wayland compositor with a "
                 "layer shell. Start it from a desktop; in GNOME that needs XWayland.\n",
                 qgetenv("DISPLAY").constData());
}

/// Qt's plugin is a package of its own.
bool hasQtForWayland() {
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) +
                       QStringLiteral("/platforms"));
    return !plugins.entryList({QStringLiteral("libqwayland*.so")}).isEmpty();
}

/// Whether Qt's X server is one that takes all clicks on a window, whatever its input shape.
[[nodiscard]] bool isInputShapeIgnored() {
    QStringList screens;
    for (const QScreen* const screen : QGuiApplication::screens()) {
        screens << screen->name();
    }
    const auto server = x11::server();
    return server && x11::ignoresInputShapes(*server, screens);
}

/// Keeps the window out while the session is locked. The lock outlives it.
template <typename Window>
std::unique_ptr<Window> outWhileLocked(std::unique_ptr<Window> window, const SessionLock& lock) {
    const auto follow = [&lock, target = window.get()] {
        target->setSessionLocked(lock.isLocked());
    };
    QObject::connect(&lock, &SessionLock::changed, window.get(), follow);
    follow();
    return window;
}

} // namespace

LinuxAdapters::LinuxAdapters() {
    if (wayland.choice().isNative) {
        workspace.setTokenRequest([this](std::function<void(const QString&)> use) {
            wayland.activation().requestToken(std::move(use));
        });
    }
}

bool LinuxAdapters::canShowOverlay() const {
    const bool canShow = wayland.choice().isNative || !isWithoutX;
    if (!canShow) {
        sayThatXIsMissing();
    }
    return canShow;
}

Screens& LinuxAdapters::screens() {
    return wayland.choice().isNative ? wayland.screens() : x11Screens;
}

QRectF LinuxAdapters::primaryGeometry() {
    return wayland.choice().isNative ? wayland.primaryGeometry() : brimlet::primaryGeometry();
}

NativeOverlayWindowFactory
LinuxAdapters::overlayWindowFactory(std::function<QRectF()> primaryGeometry) {
    return [this, primaryGeometry = std::move(primaryGeometry)](
               std::unique_ptr<QWidget> content) -> std::unique_ptr<OverlayWindow> {
        if (wayland.choice().isNative) {
            return outWhileLocked(wayland.makeOverlayWindow(std::move(content), primaryGeometry),
                                  sessionLock);
        }
        return outWhileLocked(std::make_unique<X11OverlayWindow>(
                                  std::move(content), primaryGeometry, isInputShapeIgnored()),
                              sessionLock);
    };
}

std::unique_ptr<MenuWindow> makeX11MenuWindow(std::unique_ptr<QWidget> content,
                                              const ReduceMotion& reduceMotion) {
    return std::make_unique<X11MenuWindow>(std::move(content), primaryGeometry, reduceMotion,
                                           roundedPath);
}

bool prepareLinuxApplication() {
    if (isStartAfterDisplayLoss() && !awaitDisplay()) {
        std::fputs("brimlet: The Wayland compositor has ended.\n", stderr);
        return false;
    }
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform.isEmpty() || platform.startsWith("wayland") || platform.startsWith("xcb")) {
        if (x11::canConnect()) {
            setForQt("QT_QPA_PLATFORM", "xcb");
        } else if (compositorAccepts()) {
            // The overlay needs no X server, and the panel can do without.
            isWithoutX = true;
            setForQt("QT_QPA_PLATFORM", hasQtForWayland() ? "wayland" : "offscreen");
            setForQt("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION", "none"); // EGL takes 20 MiB
        } else {
            sayThatXIsMissing();
            return false;
        }
    }
    if (!isWithoutX) {
        startupId = takeStartupId(); // else Qt uses it for the first window
    }
    disableUnresponsiveBuses();
    QApplication::setStyle(QStringLiteral("Fusion"));
    // No shared memory: with it each paint waits until the X server has read the previous one, and
    // there are only some kilobytes to send.
    setForQt("QT_XCB_NO_MITSHM", "1");
    return true;
}

void configureLinuxApplication() {
    restoreEnvironment();
    configureApplication();
    // No window is sure to come: the program may stay in the tray, or run already.
    completeStartup(startupId);
    // The autostart entry starts the program in the next session; the session manager must not
    // start it as well.
    QObject::connect(qApp, &QGuiApplication::saveStateRequest, qApp, [](QSessionManager& manager) {
        manager.setRestartHint(QSessionManager::RestartNever);
    });
}

void askRunningProgram(const SingleInstance& instance, InstanceRequest request) {
    disableUnresponsiveBuses();
    // No destructors are run, because Qt's D-Bus thread might still use the destroyed objects.
    std::quick_exit(exitCodeOf(instance.ask(request)));
}

void followDesktop(const HostStore& store, LinuxAdapters& adapters) {
    // After the many changes of one reply, since the check itself may change the store.
    auto* const check = new OncePerTurn(
        [&adapters] {
            adapters.workspace.checkPanelPower();
            adapters.memory.check();
            X11Watch::drainIfUsed();
            if (adapters.wayland.choice().isNative) {
                adapters.wayland.connection().reconnect();
            }
        },
        &adapters.workspace);
    QObject::connect(&store, &HostStore::objectWillChange, check, &OncePerTurn::schedule);
}

} // namespace brimlet
