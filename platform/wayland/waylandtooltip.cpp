#include "platform/wayland/waylandtooltip.h"

#include "platform/qt/tooltiplabel.h"
#include "platform/wayland/overlaysurface.h"
#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandprotocols.h"

namespace brimlet {

WaylandToolTip::WaylandToolTip(WaylandConnection& connection, const OverlaySurface& parent,
                               const QRect& box, const QString& text) {
    const WaylandGlobals& globals = connection.globals();
    ToolTipLabel label(text);
    m_buffers = std::make_unique<WaylandBuffers>(globals.shm.get(), label.size() * parent.scale());
    if (!m_buffers->isValid()) {
        return;
    }
    m_buffers->released = [] {};
    QImage& picture = m_buffers->beginPaint();
    picture.setDevicePixelRatio(parent.scale());
    picture.fill(Qt::transparent);
    label.render(&picture, {}, {}, QWidget::DrawChildren);

    m_surface.reset(wl_compositor_create_surface(globals.compositor.get()));
    if (globals.viewporter) {
        m_viewport.reset(wp_viewporter_get_viewport(globals.viewporter.get(), m_surface.get()));
        wp_viewport_set_destination(m_viewport.get(), label.width(), label.height());
    } else {
        wl_surface_set_buffer_scale(m_surface.get(), qRound(parent.scale()));
    }
    const Proxy<wl_region> nothing(wl_compositor_create_region(globals.compositor.get()));
    wl_surface_set_input_region(m_surface.get(), nothing.get());

    const Proxy<xdg_positioner> positioner(xdg_wm_base_create_positioner(globals.windows.get()));
    xdg_positioner_set_size(positioner.get(), label.width(), label.height());
    xdg_positioner_set_anchor(positioner.get(), XDG_POSITIONER_ANCHOR_BOTTOM);
    xdg_positioner_set_gravity(positioner.get(), XDG_POSITIONER_GRAVITY_BOTTOM);
    xdg_positioner_set_constraint_adjustment(positioner.get(),
                                             XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_X |
                                                 XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_Y);
    m_window.reset(xdg_wm_base_get_xdg_surface(globals.windows.get(), m_surface.get()));
    static constexpr xdg_surface_listener kWindow{
        .configure = [](void* data, xdg_surface* window, std::uint32_t serial) {
            auto& self = *static_cast<WaylandToolTip*>(data);
            xdg_surface_ack_configure(window, serial);
            if (self.m_buffers->isNew()) {
                self.m_buffers->show(self.m_surface.get(), QRect(QPoint(), self.m_buffers->size()));
            }
            wl_surface_commit(self.m_surface.get());
        }};
    xdg_surface_add_listener(m_window.get(), &kWindow, this);
    const QPoint anchor(box.center().x(), box.bottom() + ToolTipLabel::kGap);
    m_popup.reset(parent.createPopup(m_window.get(), positioner.get(), anchor));
    static constexpr xdg_popup_listener kPopup{
        .configure = kIgnoreEvent,
        // The compositor hides it itself, and the owner destroys it in the end.
        .popup_done = kIgnoreEvent,
        .repositioned = kIgnoreEvent};
    xdg_popup_add_listener(m_popup.get(), &kPopup, this);
    wl_surface_commit(m_surface.get());
    connection.readOnArrival(); // it is painted when the compositor has placed it
}

WaylandToolTip::~WaylandToolTip() = default;

} // namespace brimlet
