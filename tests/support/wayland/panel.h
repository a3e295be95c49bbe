#pragma once

#include "tests/support/wayland/connection.h"

#include <QColor>

#include <deque>

struct wl_surface;
struct zwlr_layer_surface_v1;

namespace brimlet::desktop {

/// A panel of a desktop along an edge of each output, in one colour.
class Panel final {
public:
    enum class Space { Reserved, Shared };
    enum class Edge { Top, Bottom };

    /// `height` is in points. Other windows are placed beside it if it reserves its space. Returns
    /// when it is on the screen.
    Panel(int height, const QColor& colour, Space space, Edge edge = Edge::Top);

private:
    struct Part final {
        const Panel* panel;
        wl_surface* surface;
    };

    static void configure(void* data, zwlr_layer_surface_v1* surface, std::uint32_t serial,
                          std::uint32_t width, std::uint32_t height);
    static void closed(void* data, zwlr_layer_surface_v1* surface);
    void paint(wl_surface* surface, std::uint32_t width, std::uint32_t height) const;

    Connection m_connection;
    QColor m_colour;
    std::deque<Part> m_parts; ///< One an output; they stay where they are.
};

} // namespace brimlet::desktop
