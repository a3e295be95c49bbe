#include "platform/wayland/waylandtextstrip.h"

#include "platform/textstrip.h"
#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandprotocols.h"

#include <cstring>
#include <utility>

namespace brimlet {
namespace {

/// A box in pixels, in points.
QRectF pointsOf(const QRect& box, double scale) {
    return {QPointF(box.topLeft()) / scale, QSizeF(box.size()) / scale};
}

} // namespace

WaylandTextStrip::WaylandTextStrip(WaylandConnection& connection, wl_surface* parent)
    : m_connection(connection) {
    const WaylandGlobals& globals = connection.globals();
    m_surface.reset(wl_compositor_create_surface(globals.compositor.get()));
    m_part.reset(
        wl_subcompositor_get_subsurface(globals.subcompositor.get(), m_surface.get(), parent));
    wl_subsurface_set_desync(m_part.get());
    m_viewport.reset(wp_viewporter_get_viewport(globals.viewporter.get(), m_surface.get()));
    letPointerThrough(globals, m_surface.get());
}

bool WaylandTextStrip::canShow(const TextStrip& text, double scale) {
    const QRectF points = pointsOf(text.box, scale);
    return points == QRectF(points.toRect());
}

bool WaylandTextStrip::show(const TextStrip& text, double scale) {
    if (m_buffers && !isSeen()) {
        return false;
    }
    const QImage& picture = *text.picture;
    const bool isNew = !m_buffers || m_key != picture.cacheKey();
    const bool isMoved = isNew || m_box != text.box;
    if (isNew) {
        auto buffers =
            std::make_unique<WaylandBuffers>(m_connection.globals().shm.get(), picture.size());
        if (!buffers->isValid()) {
            return false;
        }
        buffers->released = [] {};
        QImage& copy = buffers->beginPaint();
        std::memcpy(copy.bits(), picture.constBits(), static_cast<std::size_t>(copy.sizeInBytes()));
        buffers->show(m_surface.get(), copy.rect());
        m_buffers = std::move(buffers); // the one before goes after it was replaced
        m_key = picture.cacheKey();
    }
    if (isMoved) {
        m_box = text.box;
        const QRect points = pointsOf(m_box, scale).toRect();
        wl_subsurface_set_position(m_part.get(), points.x(), points.y());
        wp_viewport_set_destination(m_viewport.get(), points.width(), points.height());
    }
    wp_viewport_set_source(m_viewport.get(), wl_fixed_from_int(text.from), 0,
                           wl_fixed_from_int(m_box.width()), wl_fixed_from_int(m_box.height()));
    wl_surface_damage_buffer(m_surface.get(), text.from, 0, m_box.width(), m_box.height());
    wl_surface_commit(m_surface.get());
    return isMoved;
}

void WaylandTextStrip::hide() {
    if (m_buffers) {
        wl_surface_attach(m_surface.get(), nullptr, 0, 0);
        wl_surface_commit(m_surface.get());
        m_buffers.reset();
        m_frame.reset();
        m_stepsUnanswered = 0;
    }
}

/// Compositors answer only for what is on a screen that is on. An answer wakes the program, so only
/// one step in so many asks for it.
bool WaylandTextStrip::isSeen() {
    constexpr int kStepsForAnswer = 32;
    if (m_stepsUnanswered < kStepsForAnswer) {
        ++m_stepsUnanswered;
        return true;
    }
    if (m_frame) {
        return false;
    }
    m_frame.reset(wl_surface_frame(m_surface.get()));
    static constexpr wl_callback_listener kFrame{
        .done = [](void* data, wl_callback*, std::uint32_t) {
            static_cast<WaylandTextStrip*>(data)->m_frame.reset();
        }};
    wl_callback_add_listener(m_frame.get(), &kFrame, this);
    m_stepsUnanswered = 0;
    return true;
}

} // namespace brimlet
