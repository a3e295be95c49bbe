#pragma once

#include "platform/wayland/waylandproxies.h"

#include <QtGui/qcursor.h>

#include <cstdint>
#include <memory>

struct wl_cursor_theme;

namespace brimlet {

class WaylandConnection;

/// Shows an arrow or a hand at the pointer while it is on one of the program's surfaces: the
/// compositor's own picture where it offers that, else the theme's, which is loaded only while the
/// pointer is there. Main thread only.
class WaylandCursor final {
public:
    /// For the pointer of the connection's seat; both outlive it.
    WaylandCursor(WaylandConnection& connection, wl_pointer* pointer);
    ~WaylandCursor();
    WaylandCursor(const WaylandCursor&) = delete;
    WaylandCursor& operator=(const WaylandCursor&) = delete;

    /// `serial` is that of the pointer's last arrival; `scale` in pixels per point.
    void show(std::uint32_t serial, Qt::CursorShape shape, double scale);
    /// The pointer has left.
    void unload();

private:
    struct DestroyTheme final {
        void operator()(wl_cursor_theme* theme) const;
    };
    void showFromTheme(std::uint32_t serial, Qt::CursorShape shape, int scale);

    WaylandConnection& m_connection;
    wl_pointer* m_pointer;
    Proxy<wp_cursor_shape_device_v1> m_device;
    int m_themeScale = 0;
    std::unique_ptr<wl_cursor_theme, DestroyTheme> m_theme;
    Proxy<wl_surface> m_surface;
};

} // namespace brimlet
