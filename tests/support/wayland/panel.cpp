#include "tests/support/wayland/panel.h"

#include "wayland-layer-shell.h"

#include <vector>

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

namespace brimlet {

WaylandPanel::WaylandPanel(int height, const QColor& colour)
    : m_colour(colour)
    , m_surface(wl_compositor_create_surface(
          m_connection.bind<wl_compositor>(wl_compositor_interface, 1))) {
    constexpr std::uint32_t kTopLayer = 2;
    constexpr std::uint32_t kTopLeftRight = 1 | 4 | 8;
    auto* const shell = m_connection.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 1);
    auto* const layer =
        zwlr_layer_shell_v1_get_layer_surface(shell, m_surface, nullptr, kTopLayer, "panel");
    static constexpr zwlr_layer_surface_v1_listener kListener{&configure, &closed};
    zwlr_layer_surface_v1_add_listener(layer, &kListener, this);
    zwlr_layer_surface_v1_set_size(layer, 0, static_cast<std::uint32_t>(height));
    zwlr_layer_surface_v1_set_anchor(layer, kTopLeftRight);
    zwlr_layer_surface_v1_set_exclusive_zone(layer, height);
    wl_surface_commit(m_surface);
    m_connection.roundtrip();
    m_connection.roundtrip(); // the reply to the first size
}

void WaylandPanel::configure(void* self, zwlr_layer_surface_v1* surface, std::uint32_t serial,
                             std::uint32_t width, std::uint32_t height) {
    zwlr_layer_surface_v1_ack_configure(surface, serial);
    static_cast<const WaylandPanel*>(self)->paint(width, height);
}

void WaylandPanel::closed(void* /*self*/, zwlr_layer_surface_v1* /*surface*/) {}

void WaylandPanel::paint(std::uint32_t width, std::uint32_t height) const {
    const std::vector<QRgb> pixels(std::size_t{width} * height, m_colour.rgb());
    const auto size = static_cast<std::int32_t>(pixels.size() * sizeof(QRgb));
    const int file = ::memfd_create("panel", MFD_CLOEXEC);
    if (file < 0 || ::write(file, pixels.data(), static_cast<std::size_t>(size)) != size) {
        qFatal("cannot paint the test panel");
    }
    wl_shm_pool* const pool =
        wl_shm_create_pool(m_connection.bind<wl_shm>(wl_shm_interface, 1), file, size);
    ::close(file);
    wl_surface_attach(m_surface,
                      wl_shm_pool_create_buffer(pool, 0, static_cast<std::int32_t>(width),
                                                static_cast<std::int32_t>(height),
                                                static_cast<std::int32_t>(width * sizeof(QRgb)),
                                                WL_SHM_FORMAT_XRGB8888),
                      0, 0);
    wl_surface_damage(m_surface, 0, 0, static_cast<std::int32_t>(width),
                      static_cast<std::int32_t>(height));
    wl_surface_commit(m_surface);
}

} // namespace brimlet
