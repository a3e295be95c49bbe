#pragma once

#include "platform/wayland/waylandbuffers.h"
#include "platform/wayland/waylandproxies.h"

#include <QRect>

#include <memory>

namespace brimlet {

class WaylandConnection;
struct TextStrip;

/// A text over a surface, in a part (subsurface) of its own that shows a piece of the text's
/// picture: a step of its scroll moves that piece and sends no pixels. It ignores the pointer. Its
/// objects belong to one connection. Main thread only.
class WaylandTextStrip final {
public:
    /// Shows nothing yet. The parent outlives it, and so does the connection, which has a
    /// viewporter.
    WaylandTextStrip(WaylandConnection& connection, wl_surface* parent);
    WaylandTextStrip(const WaylandTextStrip&) = delete;
    WaylandTextStrip& operator=(const WaylandTextStrip&) = delete;

    /// Whether the compositor can show it without changing a pixel: parts are in whole points.
    /// `scale` is pixels per point.
    [[nodiscard]] static bool canShow(const TextStrip& text, double scale);
    /// Shows the text. Returns whether that takes a commit of the parent.
    [[nodiscard]] bool show(const TextStrip& text, double scale);
    void hide();

    /// In pixels of the parent; null while it is hidden.
    [[nodiscard]] QRect box() const { return m_buffers ? m_box : QRect(); }

private:
    [[nodiscard]] bool isSeen();

    WaylandConnection& m_connection;
    QRect m_box;
    qint64 m_key = 0; ///< The shown picture's `QImage::cacheKey()`.
    int m_stepsUnanswered = 0;
    std::unique_ptr<WaylandBuffers> m_buffers; ///< Null while it is hidden.
    Proxy<wl_surface> m_surface;
    Proxy<wl_subsurface> m_part;
    Proxy<wp_viewport> m_viewport;
    Proxy<wl_callback> m_frame;
};

} // namespace brimlet
