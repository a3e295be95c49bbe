#pragma once

#include "app/overlaychoice.h"
#include "platform/linux/linuxscreens.h"
#include "platform/wayland/waylandactivation.h"
#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandoverlaywindow.h"
#include "platform/wayland/waylandseat.h"

#include <QRectF>

#include <functional>

namespace brimlet {

/// The adapters for a Wayland compositor. Needs the application object.
class WaylandDesktop final {
public:
    /// Connects to the compositor where WAYLAND_DISPLAY is set; waits for it for three seconds at
    /// most.
    WaylandDesktop();

    /// Whether the overlay's window is to be the compositor's, as found at the start.
    [[nodiscard]] const OverlayChoice& choice() const { return m_choice; }

    [[nodiscard]] WaylandConnection& connection() { return m_connection; }
    [[nodiscard]] WaylandActivation& activation() { return m_activation; }
    [[nodiscard]] Screens& screens() { return m_screens; }
    /// The first output's, in the compositor's space; empty while there is none.
    [[nodiscard]] QRectF primaryGeometry();

    /// The overlay's window; `primaryGeometry` returns the primary screen's current geometry in the
    /// compositor's space. This outlives the window.
    [[nodiscard]] std::unique_ptr<WaylandOverlayWindow>
    makeOverlayWindow(std::unique_ptr<QWidget> content, std::function<QRectF()> primaryGeometry);

private:
    WaylandConnection m_connection;
    WaylandSeat m_seat{m_connection};
    WaylandActivation m_activation{m_connection, m_seat};
    OverlayChoice m_choice;
    LinuxScreens m_screens;
};

} // namespace brimlet
