#pragma once

#include "platform/textstrip.h"
#include "platform/wayland/waylandbuffers.h"
#include "platform/wayland/waylandproxies.h"

#include <QObject>
#include <QRect>
#include <QRegion>

#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace brimlet {

class WaylandConnection;
class WaylandOutput;

/// A picture on an output, above everything else. It is a part (a subsurface) of an invisible
/// surface in the overlay layer. sway 1.10 takes the keyboard from the window in front when a part
/// of a popup is clicked. Where the layer shell is older than version 4 it is a part of an
/// invisible popup of that surface, since KWin before its version 6
/// - gives a layer surface that is clicked the keyboard, whatever it asks for. A popup without a
///   grab never gets it;
/// - moves a popup out from under the panels. A popup's parts are where they are put.
/// Its objects belong to one connection. Main thread only.
class OverlaySurface final : public QObject {
    Q_OBJECT

public:
    /// Paints these points of the picture; all of it when absent.
    using Paint = std::function<void(QImage& image, const std::optional<QRegion>& points)>;

    /// Appears when the compositor has placed it. `place` is relative to the output, in points.
    OverlaySurface(WaylandConnection& connection, const WaylandOutput& output, const QRect& place,
                   Paint paint);
    ~OverlaySurface() override;

    /// Clicks elsewhere go to what is below. In points.
    void setInputRegion(const QRegion& points);
    /// Paints these points at the next chance; all points when absent.
    void update(const std::optional<QRegion>& points);
    /// Shows these texts at once, or at the next chance as any other change: not before the
    /// compositor has shown the last picture.
    void showTexts(std::span<const TextStrip> texts);

    [[nodiscard]] wl_surface* surface() const { return m_surface.get(); }
    /// Makes the popup of that positioner a child of this one; `anchor`, in points of the picture,
    /// is where it is placed.
    [[nodiscard]] xdg_popup* createPopup(xdg_surface* window, xdg_positioner* positioner,
                                         QPoint anchor) const;
    /// Pixels per point.
    [[nodiscard]] double scale() const { return m_scale; }

Q_SIGNALS:
    /// The compositor has taken the surface away; it must be destroyed, not within this signal.
    void closed();

private:
    void createAnchor(const WaylandOutput& output, QPoint place);
    void placed();
    void createPopup();
    void createPart();
    void setScale(double scale);
    [[nodiscard]] bool canPaint() const;
    void paintDue();
    void show(const QRegion& pixels);
    void commit();
    [[nodiscard]] QRegion toPixels(const QRegion& points) const;

    WaylandConnection& m_connection;
    QSize m_size;
    Paint m_paint;
    double m_scale = 1;
    bool m_isAnchorShown = false;
    bool m_isConfigured = false;
    bool m_isAllDue = true;
    QRegion m_due; ///< In points.
    std::unique_ptr<WaylandBuffers> m_buffers;
    WaylandBuffers m_invisible; ///< One each for the two surfaces that are not seen.
    // Destroyed in the opposite order: a popup before the surface that it belongs to.
    Proxy<wl_surface> m_anchor;
    Proxy<zwlr_layer_surface_v1> m_layer;
    Proxy<wl_surface> m_popupSurface;
    Proxy<wl_surface> m_surface;
    Proxy<wl_subsurface> m_part;
    Proxy<wp_fractional_scale_v1> m_preferredScale;
    Proxy<wp_viewport> m_viewport;
    Proxy<xdg_surface> m_window;
    Proxy<xdg_popup> m_popup;
    Proxy<wl_callback> m_frame;
};

} // namespace brimlet
