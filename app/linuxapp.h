#pragma once

#include "app/menubarextra.h"
#include "creative/creativeenvironment.h"
#include "overlay/overlaypanel.h"
#include "platform/instancerequest.h"

#include <QRectF>

#include <functional>
#include <optional>

namespace brimlet {

class BrimletApp;
class LinuxWorkspace;
class SingleInstance;

/// What both programs do before the application object: choose the X11 platform, where windows can
/// be placed, also under Wayland, and the plainest widget style, whatever the desktop's. False, and
/// a line on stderr, where there is no display to show anything on.
[[nodiscard]] bool prepareLinuxApplication();

/// What both programs do right after it.
void configureLinuxApplication();

/// Makes the overlay's window on the X server with its views inside. `primaryGeometry` gives the
/// primary screen in Qt's space at the time of asking.
[[nodiscard]] OverlayWindowFactory
overlayWindowFactory(const std::function<QRectF()>& primaryGeometry,
                     const CreativeEnvironment& environment);

/// Makes the menu-bar panel's window on the X server with the menu inside, whose "Quit" ends the
/// main loop.
[[nodiscard]] MenuWindowFactory menuWindowFactory(const std::function<QRectF()>& primaryGeometry,
                                                  const CreativeEnvironment& environment);

/// Has the application do what is asked of it over the desktop.
void obeyRequests(const SingleInstance& instance, BrimletApp& app);

/// The whole of a program that only asks the running one: ends the process with 0 once that has
/// been asked, else with a line on stderr and 1.
[[noreturn]] void askRunningProgram(const SingleInstance& instance, InstanceRequest request);

/// Has the workspace look at the built-in panel's power, and the watch at what other programs did
/// on the screen, after each change of the store: every reply and every failed request is one, so
/// that happens every few seconds anyway.
void followDesktop(const HostStore& store, LinuxWorkspace& workspace);

} // namespace brimlet
