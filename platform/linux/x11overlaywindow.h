#pragma once

#include "platform/linux/x11textstrips.h"
#include "platform/linux/x11tooltip.h"
#include "platform/overlaywindow.h"

#include <QPainterPath>
#include <QRegion>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace brimlet {

/// The overlay's window on an X server: unmanaged, so that it is on every desktop and never takes
/// focus. It stays above managed windows and below the menus and locked screens of other programs
/// (`x11::raiseAboveManagedWindows()`). Shows the tooltips of the content's widgets that ignore the
/// event for it. Clicks outside the clickable region pass through; without a
/// compositor the window is cut to the painted region.
class X11OverlayWindow final : public QWidget, public OverlayWindow {
    Q_OBJECT

public:
    /// Takes ownership of the content. `primaryGeometry` returns the primary screen's current
    /// geometry in Qt's coordinates. A window that is `isFitted` covers no more of its frame than
    /// the smallest rectangle around what is painted, for X servers that ignore input shapes.
    X11OverlayWindow(std::unique_ptr<QWidget> content, std::function<QRectF()> primaryGeometry,
                     bool isFitted = false);

    void orderFrontRegardless() override;
    void orderOut() override;
    void setFrame(const Rect& frame) override;
    void setIgnoresMouseEvents(bool ignores) override;
    void setRegions(const QPainterPath& clickable, const QPainterPath& painted) override;
    void updateContent(const QRegion& points) override;
    void showTexts(std::span<const TextStrip> texts) override;

    /// While true the window is out, whether or not it is ordered front.
    void setSessionLocked(bool isLocked);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* window, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void place();
    void applyShapes();
    void bringForward();

    QWidget* m_content;
    X11TextStrips m_texts;
    X11ToolTip m_toolTip;
    std::function<QRectF()> m_primaryGeometry;
    bool m_isFitted;
    QRect m_frame; ///< In Qt's coordinates.
    QPainterPath m_clickable;
    QPainterPath m_painted;
    // The two in device pixels at this scale factor; 0 for outdated ones.
    double m_scaledBy = 0;
    QRegion m_clickablePixels;
    QRegion m_paintedPixels;
    bool m_ignoresMouseEvents = true;
    bool m_isOrderedFront = false;
    bool m_isSessionLocked = false;
    // What was sent to the X server last; only changes are sent.
    WId m_shapedWindow = 0;
    QRegion m_inputShape;
    std::optional<QRegion> m_boundingShape; ///< Absent while the window is not cut.
    std::uint64_t m_stacking = 0; ///< X11Watch's serial when this window was last restacked.
};

} // namespace brimlet
