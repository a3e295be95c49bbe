#pragma once

#include "app/waylanddesktop.h"
#include "app/wiring.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/instancerequest.h"
#include "platform/linux/libsecretstore.h"
#include "platform/linux/linuxbundle.h"
#include "platform/linux/linuxreducemotion.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/memorytrim.h"
#include "platform/linux/qtscreens.h"
#include "platform/linux/sessionlock.h"
#include "platform/linux/traystatusitem.h"
#include "platform/linux/xdgcachesfolder.h"
#include "platform/qt/pictureprocess.h"
#include "platform/qt/qtclock.h"

#include <QCoreApplication>
#include <QRectF>

#include <functional>
#include <memory>

namespace brimlet {

class SingleInstance;

/// An adapter for each port on a Linux desktop. Create it after the application object.
struct LinuxAdapters final {
    QtClock clock;
    WaylandDesktop wayland;
    QtScreens x11Screens;
    LinuxWorkspace workspace{clock};
    SessionLock sessionLock;
    LibsecretStore secrets;
    LinuxBundle bundle{QCoreApplication::applicationFilePath()};
    XdgCachesFolder cachesFolder;
    LinuxReduceMotion reduceMotion;
    std::unique_ptr<CurlHttpClient> http = std::make_unique<CurlHttpClient>();
    PictureProcess pictures{pictureProgram()};
    TrayStatusItem statusItem;
    MemoryTrim memory{clock};

    LinuxAdapters();
    /// Prints a line to stderr where there is neither an X server nor a compositor with a layer
    /// shell.
    [[nodiscard]] bool canShowOverlay() const;
    /// Of the display server that has the overlay's window.
    [[nodiscard]] Screens& screens();
    /// The primary one of these screens, in the display server's coordinates.
    [[nodiscard]] QRectF primaryGeometry();
    /// A factory for the overlay's window. `primaryGeometry` returns the primary screen's current
    /// geometry in the display server's coordinates. The adapters outlive the windows.
    [[nodiscard]] NativeOverlayWindowFactory
    overlayWindowFactory(std::function<QRectF()> primaryGeometry);
};

[[nodiscard]] std::unique_ptr<MenuWindow> makeX11MenuWindow(std::unique_ptr<QWidget> content,
                                                            const ReduceMotion& reduceMotion);

/// Call before the application object is created. Selects Qt's X11 platform, since only X11 lets a
/// program place its windows, or where there is only a Wayland compositor Qt's Wayland platform, or
/// one without windows; unless QT_QPA_PLATFORM names another than X11 or Wayland. Also selects the
/// Fusion style. Disables buses that do not answer, which may block for 1.4 s. Without a display
/// server it prints a line to stderr and returns false; after the loss of one it first waits for
/// its return.
[[nodiscard]] bool prepareLinuxApplication();

/// Call right after the application object is created. Restores the environment and calls
/// `configureApplication()`.
void configureLinuxApplication();

/// Sends a request to the running program and ends this process: with 0 if the request was carried
/// out, else with 1 and a line on stderr.
[[noreturn]] void askRunningProgram(const SingleInstance& instance, InstanceRequest request);

/// After each change of the store, makes the workspace check whether the built-in display is on,
/// and the memory whether it can be trimmed, `X11Watch` read its queued events, and a lost Wayland
/// connection be made again. Every reply and every failed request changes the store, so this needs
/// no timer. The adapters outlive the main loop.
void followDesktop(const HostStore& store, LinuxAdapters& adapters);

} // namespace brimlet
