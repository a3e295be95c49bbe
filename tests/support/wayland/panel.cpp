#include "tests/support/wayland/panel.h"

#include "client-wlr-layer-shell.h"

#include <vector>

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

namespace brimlet::desktop {

Panel::Panel(int height, const QColor& colour, Space space, Edge edge)
    : m_colour(colour) {
    auto* const compositor = m_connection.bind<wl_compositor>(wl_compositor_interface, 1);
    auto* const shell = m_connection.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 1);
    static constexpr zwlr_layer_surface_v1_listener kListener{&configure, &closed};
    for (std::size_t i = 0;; ++i) {
        auto* const output = m_connection.bind<wl_output>(wl_output_interface, 1, i);
        if (output == nullptr) {
            break;
        }
        Part& part = m_parts.emplace_back(Part{this, wl_compositor_create_surface(compositor)});
        auto* const layer = zwlr_layer_shell_v1_get_layer_surface(
            shell, part.surface, output, ZWLR_LAYER_SHELL_V1_LAYER_TOP, "panel");
        zwlr_layer_surface_v1_add_listener(layer, &kListener, &part);
        zwlr_layer_surface_v1_set_size(layer, 0, static_cast<std::uint32_t>(height));
        zwlr_layer_surface_v1_set_anchor(
            layer, (edge == Edge::Top ? ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP
                                      : ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM) |
                       ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
        zwlr_layer_surface_v1_set_exclusive_zone(layer, space == Space::Reserved ? height : 0);
        wl_surface_commit(part.surface);
    }
    m_connection.roundtrip();
    m_connection.roundtrip(); // the replies to the first sizes
}

void Panel::configure(void* data, zwlr_layer_surface_v1* surface, std::uint32_t serial,
                      std::uint32_t width, std::uint32_t height) {
    zwlr_layer_surface_v1_ack_configure(surface, serial);
    const Part& part = *static_cast<const Part*>(data);
    part.panel->paint(part.surface, width, height);
}

void Panel::closed(void* /*data*/, zwlr_layer_surface_v1* /*surface*/) {}

void Panel::paint(wl_surface* surface, std::uint32_t width, std::uint32_t height) const {
    const std::vector<QRgb> pixels(std::size_t{width} * height, m_colour.rgb());
    const auto size = static_cast<std::int32_t>(pixels.size() * sizeof(QRgb));
    const int file = ::memfd_create("panel", MFD_CLOEXEC);
    if (file < 0 || ::write(file, pixels.data(), static_cast<std::size_t>(size)) != size) {
        qFatal("cannot paint the test panel");
    }
    wl_shm_pool* const pool =
        wl_shm_create_pool(m_connection.bind<wl_shm>(wl_shm_interface, 1), file, size);
    ::close(file);
    wl_surface_attach(surface,
                      wl_shm_pool_create_buffer(pool, 0, static_cast<std::int32_t>(width),
                                                static_cast<std::int32_t>(height),
                                                static_cast<std::int32_t>(width * sizeof(QRgb)),
                                                WL_SHM_FORMAT_XRGB8888),
                      0, 0);
    wl_surface_damage(surface, 0, 0, static_cast<std::int32_t>(width),
                      static_cast<std::int32_t>(height));
    wl_surface_commit(surface);
}

} // namespace brimlet::desktop
