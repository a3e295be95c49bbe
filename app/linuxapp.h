#pragma once

#include "app/wiring.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/instancerequest.h"
#include "platform/linux/libsecretstore.h"
#include "platform/linux/linuxbundle.h"
#include "platform/linux/linuxreducemotion.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/qtscreens.h"
#include "platform/linux/traystatusitem.h"
#include "platform/linux/xdgcachesfolder.h"
#include "platform/qt/qtclock.h"

#include <QCoreApplication>
#include <QRectF>

#include <functional>
#include <memory>

namespace brimlet {

class SingleInstance;

/// An adapter for each port on a Linux desktop. Needs the application object.
struct LinuxAdapters final {
    QtScreens screens;
    LinuxWorkspace workspace;
    LibsecretStore secrets;
    LinuxBundle bundle{QCoreApplication::applicationFilePath()};
    XdgCachesFolder cachesFolder;
    LinuxReduceMotion reduceMotion;
    QtClock clock;
    std::unique_ptr<CurlHttpClient> http = std::make_unique<CurlHttpClient>();
    TrayStatusItem statusItem;
};

/// Makes the overlay's window on the X server. `primaryGeometry` returns the primary screen's
/// current geometry in Qt's coordinates.
[[nodiscard]] NativeOverlayWindow x11OverlayWindows(std::function<QRectF()> primaryGeometry);

/// Makes the menu-bar panel's window on the X server.
[[nodiscard]] std::unique_ptr<MenuWindow> makeX11MenuWindow(std::unique_ptr<QWidget> content);

/// What both programs do before the application object is created: choose Qt's X11 platform, since
/// only X11 lets a program place its windows, and the plainest widget style, whatever the
/// desktop's. Without a display it prints a line to stderr and returns false.
[[nodiscard]] bool prepareLinuxApplication();

/// What both programs do right after it was created.
void configureLinuxApplication();

/// The whole of a process that only sends a request to the running program. Ends the process: with
/// 0 if that was done, else with 1 and a line on stderr.
[[noreturn]] void askRunningProgram(const SingleInstance& instance, InstanceRequest request);

/// After each change of the store, has the workspace check the built-in panel's power and the X
/// watch handle its events. Every reply and every failed request changes the store, so this needs
/// no timer. The workspace outlives the main loop.
void followDesktop(const HostStore& store, LinuxWorkspace& workspace);

} // namespace brimlet
