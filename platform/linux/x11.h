#pragma once

#include <QRegion>
#include <QString>
#include <QStringList>
#include <QtGui/qwindowdefs.h>

#include <cstdint>
#include <optional>

namespace brimlet::x11 {

// Requests to the X server that Qt does not offer, on Qt's connection and the main thread. On other
// Qt platforms, such as "offscreen", they do nothing and report a compositor and no tray.

/// Whether the X server named by DISPLAY accepts connections. Needs no application object.
[[nodiscard]] bool canConnect();

/// What an X server says of itself.
struct Server final {
    QString vendor;
    std::uint32_t release = 0;
    bool hasXWaylandExtension = false; ///< XWayland's own, since version 23.1.
    bool hasCompositor = false;
    bool hasTray = false; ///< Of the XEmbed kind.
};

/// Asks the X server named by DISPLAY, over a connection of its own; absent when there is none.
/// Needs no application object.
[[nodiscard]] std::optional<Server> server();

/// Versions before 23.1 are recognised by the names of their screens.
[[nodiscard]] bool isXWayland(const Server& server, const QStringList& screens);

/// Whether it is an XWayland before version 24.1, which does not pass a window's input shape on to
/// the compositor: clicks on the whole window are taken from the windows of Wayland programs.
[[nodiscard]] bool ignoresInputShapes(const Server& server, const QStringList& screens);

/// The version in a release number of the X.Org Foundation, as its servers are called: "1.20.13",
/// "21.1.7".
[[nodiscard]] QString versionOf(std::uint32_t release);

/// Limits the window's clickable area to the region, in physical pixels relative to the window.
/// Clicks elsewhere go to the windows below; so do all clicks when the region is empty.
void setInputShape(WId window, const QRegion& region);

/// Cuts the window to the region, in physical pixels relative to the window; absent for all of it.
void setBoundingShape(WId window, const std::optional<QRegion>& region);

/// Restacks the window, which may be unmapped: above the managed windows that cover a part of it,
/// and below the override-redirect windows of other programs, such as menus and locked screens,
/// that are above those. Takes round trips to the X server. It sees a window manager's frame as
/// managed even if that is an override-redirect window itself.
void raiseAboveManagedWindows(WId window);

/// Whether a compositor runs, which blends transparent windows with what is behind them. Costs a
/// round trip to the X server; X11Watch answers without one.
[[nodiscard]] bool hasCompositor();

/// Whether an XEmbed tray is running. Costs a round trip to the X server.
[[nodiscard]] bool hasSystemTray();

/// Whether an event announces a new XEmbed tray. `event` is an xcb_generic_event_t, as passed to
/// Qt's native event filters.
[[nodiscard]] bool announcesSystemTray(const void* event);

} // namespace brimlet::x11
