#pragma once

#include "platform/linux/reservedareas.h"

#include <QByteArray>
#include <QString>
#include <QtGui/qwindowdefs.h>

namespace brimlet::x11 {

// Requests to the window manager that Qt does not offer, on Qt's connection and the main thread. On
// other Qt platforms than X11 they do nothing.

/// Declares the window a panel of the program, which stays above others and which bars and pagers
/// do not list. Call it before each time the window is shown.
void declareAsPanel(WId window);

/// Declares the window the desktop's, which is below all others and takes no keyboard. Call it
/// before the window is shown.
void declareAsDesktop(WId window);

/// Removes the parent that Qt names for a tooltip's window each time it shows it: a helper window,
/// which window managers warn about.
void removeParentHint(WId window);

/// Asks the window manager to give the window the keyboard focus, as a direct user action at the
/// present time, which window managers follow even when another program was used last. Takes round
/// trips to the X server.
void activate(WId window);

/// Sends a message of the start-up notification protocol to the window manager and other programs.
void broadcastStartupInfo(const QByteArray& message);

/// The name that the window manager gives itself; empty without one. Takes round
/// trips to the X server.
[[nodiscard]] QString windowManagerName();

/// Whether the pointer is on no window, on the one with the desktop's icons, or on a bar. Takes
/// round trips to the X server.
[[nodiscard]] bool isPointerOnDesktopOrBar();

/// What bars reserve, by the properties of the root window and of the managed windows. Takes three
/// round trips to the X server.
[[nodiscard]] ReservedAreas reservedAreas();

} // namespace brimlet::x11
