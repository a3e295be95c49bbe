#pragma once

#include "tests/support/wayland/connection.h"

#include <QColor>

struct wl_surface;
struct zwlr_layer_surface_v1;

namespace brimlet {

/// A panel of a desktop along the top edge of the first output, in one colour; other windows are
/// placed beside it.
class WaylandPanel final {
public:
    /// `height` is in points. Returns when it is on the screen.
    WaylandPanel(int height, const QColor& colour);

private:
    static void configure(void* self, zwlr_layer_surface_v1* surface, std::uint32_t serial,
                          std::uint32_t width, std::uint32_t height);
    static void closed(void* self, zwlr_layer_surface_v1* surface);
    void paint(std::uint32_t width, std::uint32_t height) const;

    WaylandConnection m_connection;
    QColor m_colour;
    wl_surface* m_surface;
};

} // namespace brimlet
