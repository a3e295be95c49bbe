#pragma once

#include "platform/wayland/waylandbuffers.h"
#include "platform/wayland/waylandproxies.h"

#include <QRect>
#include <QString>

#include <memory>

namespace brimlet {

class OverlaySurface;
class WaylandConnection;

/// A tooltip in a popup of the overlay's, which ignores the pointer. Its objects belong to one
/// connection. Main thread only.
class WaylandToolTip final {
public:
    /// Below this box, in points of the parent, centred as far as the screen allows. The parent
    /// outlives it. `text` may be rich text.
    WaylandToolTip(WaylandConnection& connection, const OverlaySurface& parent, const QRect& box,
                   const QString& text);
    ~WaylandToolTip();
    WaylandToolTip(const WaylandToolTip&) = delete;
    WaylandToolTip& operator=(const WaylandToolTip&) = delete;

private:
    std::unique_ptr<WaylandBuffers> m_buffers;
    Proxy<wl_surface> m_surface;
    Proxy<wp_viewport> m_viewport;
    Proxy<xdg_surface> m_window;
    Proxy<xdg_popup> m_popup;
};

} // namespace brimlet
