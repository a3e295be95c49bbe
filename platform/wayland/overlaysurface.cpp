#include "platform/wayland/overlaysurface.h"

#include "platform/qt/contentpainting.h"
#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandoutputs.h"
#include "platform/wayland/waylandprotocols.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace brimlet {
namespace {

/// As compositors tell fractional scales: in units of a 120th.
double wholeUnits(double scale) {
    constexpr double kUnits = 120;
    return std::round(scale * kUnits) / kUnits;
}

/// Clicks on the surface reach what is below.
void letPointerThrough(const WaylandConnection& connection, wl_surface* surface) {
    const Proxy<wl_region> nothing(
        wl_compositor_create_region(connection.globals().compositor.get()));
    wl_surface_set_input_region(surface, nothing.get());
}

/// From the top of the picture to the surfaces that are not seen, in points: below any panel, where
/// KWin leaves a popup, and a whole number of pixels at every scale.
constexpr int kAnchorBelow = 240;

} // namespace

OverlaySurface::OverlaySurface(WaylandConnection& connection, const WaylandOutput& output,
                               const QRect& place, Paint paint)
    : m_connection(connection)
    , m_size(place.size())
    , m_paint(std::move(paint))
    , m_invisible(connection.globals().shm.get(), QSize(1, 1)) {
    const WaylandGlobals& globals = connection.globals();
    m_invisible.released = [] {};
    createAnchor(output, place.topLeft() + QPoint(0, kAnchorBelow));
    constexpr std::uint32_t kWithoutPopup = 4;
    if (zwlr_layer_shell_v1_get_version(globals.layerShell.get()) < kWithoutPopup) {
        m_popupSurface.reset(wl_compositor_create_surface(globals.compositor.get()));
    }
    m_surface.reset(wl_compositor_create_surface(globals.compositor.get()));
    createPart();
    if (globals.fractionalScale && globals.viewporter) {
        m_viewport.reset(wp_viewporter_get_viewport(globals.viewporter.get(), m_surface.get()));
        wp_viewport_set_destination(m_viewport.get(), m_size.width(), m_size.height());
        m_preferredScale.reset(wp_fractional_scale_manager_v1_get_fractional_scale(
            globals.fractionalScale.get(), m_surface.get()));
        static constexpr wp_fractional_scale_v1_listener kScale{
            .preferred_scale = [](void* self, wp_fractional_scale_v1*, std::uint32_t units) {
                static_cast<OverlaySurface*>(self)->setScale(units / 120.0);
            }};
        wp_fractional_scale_v1_add_listener(m_preferredScale.get(), &kScale, this);
        // The compositor tells it only when the surface is on the output.
        setScale(wholeUnits(output.exactScale()));
    } else {
        wl_surface_set_buffer_scale(m_surface.get(), output.scale());
        setScale(output.scale());
    }
}

OverlaySurface::~OverlaySurface() = default;

/// The surface in the overlay layer, whose part or popup appears once the compositor has placed it.
void OverlaySurface::createAnchor(const WaylandOutput& output, QPoint place) {
    const WaylandGlobals& globals = m_connection.globals();
    m_anchor.reset(wl_compositor_create_surface(globals.compositor.get()));
    m_layer.reset(zwlr_layer_shell_v1_get_layer_surface(
        globals.layerShell.get(), m_anchor.get(), output.proxy(), ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
        "brimlet"));
    zwlr_layer_surface_v1_set_size(m_layer.get(), 1, 1);
    zwlr_layer_surface_v1_set_anchor(m_layer.get(), ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP |
                                                        ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    zwlr_layer_surface_v1_set_margin(m_layer.get(), place.y(), 0, 0, place.x());
    zwlr_layer_surface_v1_set_exclusive_zone(m_layer.get(), -1); // no panel moves it
    static constexpr zwlr_layer_surface_v1_listener kLayer{
        .configure =
            [](void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t,
               std::uint32_t) {
                auto& self = *static_cast<OverlaySurface*>(data);
                zwlr_layer_surface_v1_ack_configure(layer, serial);
                self.placed();
            },
        .closed =
            [](void* data, zwlr_layer_surface_v1*) {
                Q_EMIT static_cast<OverlaySurface*>(data)->closed();
            }};
    zwlr_layer_surface_v1_add_listener(m_layer.get(), &kLayer, this);
    letPointerThrough(m_connection, m_anchor.get());
    wl_surface_commit(m_anchor.get());
}

void OverlaySurface::placed() {
    if (!m_invisible.isValid() || !m_buffers->isValid()) { // there is no memory
        Q_EMIT closed();
        return;
    }
    // A surface is shown, and what belongs to it, once it has a picture; a transparent one here.
    const bool isFirst = !std::exchange(m_isAnchorShown, true);
    if (isFirst) {
        m_invisible.show(m_anchor.get(), {});
    }
    wl_surface_commit(m_anchor.get());
    if (isFirst && m_popupSurface) {
        createPopup();
    } else if (isFirst) {
        m_isConfigured = true;
        paintDue();
    }
}

void OverlaySurface::createPopup() {
    const WaylandGlobals& globals = m_connection.globals();
    const Proxy<xdg_positioner> positioner(xdg_wm_base_create_positioner(globals.windows.get()));
    xdg_positioner_set_size(positioner.get(), 1, 1);
    xdg_positioner_set_anchor_rect(positioner.get(), 0, 0, 1, 1);
    xdg_positioner_set_anchor(positioner.get(), XDG_POSITIONER_ANCHOR_TOP_LEFT);
    xdg_positioner_set_gravity(positioner.get(), XDG_POSITIONER_GRAVITY_BOTTOM_RIGHT);
    m_window.reset(xdg_wm_base_get_xdg_surface(globals.windows.get(), m_popupSurface.get()));
    static constexpr xdg_surface_listener kWindow{
        .configure = [](void* data, xdg_surface* window, std::uint32_t serial) {
            auto& self = *static_cast<OverlaySurface*>(data);
            xdg_surface_ack_configure(window, serial);
            if (!std::exchange(self.m_isConfigured, true)) {
                self.m_invisible.show(self.m_popupSurface.get(), {});
            }
            wl_surface_commit(self.m_popupSurface.get());
            self.paintDue();
        }};
    xdg_surface_add_listener(m_window.get(), &kWindow, this);
    m_popup.reset(xdg_surface_get_popup(m_window.get(), nullptr, positioner.get()));
    static constexpr xdg_popup_listener kPopup{
        .configure = kIgnoreEvent,
        .popup_done = [](void* data,
                         xdg_popup*) { Q_EMIT static_cast<OverlaySurface*>(data)->closed(); },
        .repositioned = kIgnoreEvent};
    xdg_popup_add_listener(m_popup.get(), &kPopup, this);
    zwlr_layer_surface_v1_get_popup(m_layer.get(), m_popup.get());
    // Else it is the box around all its parts, and placed by that.
    xdg_surface_set_window_geometry(m_window.get(), 0, 0, 1, 1);
    letPointerThrough(m_connection, m_popupSurface.get());
    wl_surface_commit(m_popupSurface.get());
}

void OverlaySurface::createPart() {
    m_part.reset(
        wl_subcompositor_get_subsurface(m_connection.globals().subcompositor.get(), m_surface.get(),
                                        m_popupSurface ? m_popupSurface.get() : m_anchor.get()));
    wl_subsurface_set_position(m_part.get(), 0, -kAnchorBelow);
    wl_subsurface_set_desync(m_part.get()); // it need not wait for what it is a part of
}

xdg_popup* OverlaySurface::createPopup(xdg_surface* window, xdg_positioner* positioner,
                                       QPoint anchor) const {
    xdg_positioner_set_anchor_rect(positioner, 0, 0, 1, 1);
    xdg_positioner_set_offset(positioner, anchor.x(), anchor.y() - kAnchorBelow);
    xdg_popup* const popup = xdg_surface_get_popup(window, m_window.get(), positioner);
    if (!m_window) {
        zwlr_layer_surface_v1_get_popup(m_layer.get(), popup);
    }
    return popup;
}

void OverlaySurface::setScale(double scale) {
    if (m_buffers && m_scale == scale) {
        return;
    }
    m_scale = scale;
    const QSize pixels(qRound(m_size.width() * scale), qRound(m_size.height() * scale));
    m_buffers = std::make_unique<WaylandBuffers>(m_connection.globals().shm.get(), pixels);
    m_buffers->released = [this] { paintDue(); };
    update(std::nullopt);
}

void OverlaySurface::setInputRegion(const QRegion& points) {
    const Proxy<wl_region> region(
        wl_compositor_create_region(m_connection.globals().compositor.get()));
    for (const QRect& part : points) {
        wl_region_add(region.get(), part.x(), part.y(), part.width(), part.height());
    }
    wl_surface_set_input_region(m_surface.get(), region.get());
    if (m_isConfigured && !m_buffers->isNew()) {
        commit();
    }
}

void OverlaySurface::update(const std::optional<QRegion>& points) {
    if (points) {
        m_due += *points;
    } else {
        m_isAllDue = true;
    }
    paintDue();
}

/// One picture for each frame: the compositor answers when the last one was shown, and not at all
/// while the screen is off.
bool OverlaySurface::canPaint() const {
    return m_isConfigured && !m_frame && m_buffers->isValid() && m_buffers->canPaint();
}

void OverlaySurface::paintDue() {
    if (!m_isAllDue && m_due.isEmpty()) {
        return;
    }
    if (!canPaint()) {
        m_connection.readOnArrival(); // what the compositor answers is waited for
        return;
    }
    const bool isAll = std::exchange(m_isAllDue, false) || m_buffers->isNew();
    const QRegion due = std::exchange(m_due, {});
    QImage& image = m_buffers->beginPaint();
    image.setDevicePixelRatio(m_scale);
    m_paint(image, isAll ? std::nullopt : std::optional(due));
    show(isAll ? QRegion(image.rect()) : toPixels(due));
}

void OverlaySurface::showTexts(std::span<const TextStrip> texts) {
    m_connection.readPictureEvents(); // those of the last step
    if (!canPaint() || m_isAllDue || !m_due.isEmpty() || m_buffers->isNew()) {
        update(pointsOf(texts, m_scale));
        return;
    }
    const QRect all(QPoint(), m_buffers->size());
    QRegion changed;
    for (const TextStrip& text : texts) {
        changed += text.box & all;
    }
    QImage& image = m_buffers->beginPaint(changed);
    for (const TextStrip& text : texts) {
        const QRect box = text.box & all;
        const QPoint start = QPoint(text.from, 0) + box.topLeft() - text.box.topLeft();
        for (int row = 0; row < box.height(); ++row) {
            const QRgb* const from =
                reinterpret_cast<const QRgb*>(text.picture.constScanLine(start.y() + row)) +
                start.x();
            std::copy_n(from, box.width(),
                        reinterpret_cast<QRgb*>(image.scanLine(box.y() + row)) + box.x());
        }
    }
    show(changed);
    m_connection.postponeReading();
}

void OverlaySurface::show(const QRegion& pixels) {
    m_buffers->show(m_surface.get(), pixels);
    m_frame.reset(wl_surface_frame(m_surface.get()));
    static constexpr wl_callback_listener kFrame{
        .done = [](void* data, wl_callback*, std::uint32_t) {
            auto& self = *static_cast<OverlaySurface*>(data);
            self.m_frame.reset();
            self.paintDue();
        }};
    wl_callback_add_listener(m_frame.get(), &kFrame, this);
    commit();
}

void OverlaySurface::commit() {
    wl_surface_commit(m_surface.get());
}

/// The pixels that these points are in, at least in part.
QRegion OverlaySurface::toPixels(const QRegion& points) const {
    QRegion pixels;
    for (const QRect& part : points) {
        pixels += QRectF(QPointF(part.topLeft()) * m_scale, QSizeF(part.size()) * m_scale)
                      .toAlignedRect();
    }
    return pixels & QRect(QPoint(), m_buffers->size());
}

} // namespace brimlet
