#pragma once

#include <QRect>
#include <QtGui/qwindowdefs.h>

#include <vector>

namespace brimlet::x11 {

// What Qt does not offer of the X server. On another platform, such as the offscreen one, these do
// nothing and report a compositor and no tray.

/// Whether the X server that DISPLAY names takes connections. Needs no application object.
[[nodiscard]] bool canConnect();

/// Clicks on the window count only inside the rectangles (pixels of the screen); elsewhere, and
/// everywhere without any, they reach what is underneath.
void setInputShape(WId window, const std::vector<QRect>& rectangles);

/// Whether somebody blends transparent windows with what is behind them. Asks the X server and
/// waits for its answer; X11Watch knows without.
[[nodiscard]] bool hasCompositor();

/// Gives the window the keyboard, as a wish of the user's that window managers follow even when the
/// user was last busy with another program.
void activate(WId window);

/// Whether there is an XEmbed tray.
[[nodiscard]] bool hasSystemTray();

/// Whether an event of the X server's says that an XEmbed tray has come.
[[nodiscard]] bool announcesSystemTray(const void* event);

} // namespace brimlet::x11
