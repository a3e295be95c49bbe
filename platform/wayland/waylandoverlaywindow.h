#pragma once

#include "platform/onceperturn.h"
#include "platform/overlaywindow.h"
#include "platform/wayland/widgetpointer.h"

#include <QBasicTimer>
#include <QPainterPath>
#include <QRectF>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

struct wl_surface;

namespace brimlet {

class OverlaySurface;
class WaylandConnection;
class WaylandSeat;
class WaylandToolTip;

/// The overlay's window on a compositor with a layer shell: above panels and full-screen windows,
/// on every desktop, never focused. Clicks outside the clickable region pass through. Qt does not
/// show the widget anywhere, whatever its platform; it paints on demand, takes the pointer's events
/// and is what screen readers see.
///
/// Without an output at its place, and while the connection is lost, it is out until both are back.
class WaylandOverlayWindow final : public QWidget, public OverlayWindow {
    Q_OBJECT

public:
    /// Takes ownership of the content. `primaryGeometry` returns the primary output's current
    /// geometry in the compositor's space. The connection and the seat may end before the window,
    /// which is then out.
    WaylandOverlayWindow(std::unique_ptr<QWidget> content, WaylandConnection& connection,
                         WaylandSeat& seat, std::function<QRectF()> primaryGeometry);
    ~WaylandOverlayWindow() override;

    void orderFrontRegardless() override;
    void orderOut() override;
    void setFrame(const Rect& frame) override;
    void setIgnoresMouseEvents(bool ignores) override;
    void setRegions(const QPainterPath& clickable, const QPainterPath& painted) override;
    void updateContent(const QRegion& points) override;
    void showTexts(std::span<const TextStrip> texts) override;

    /// While true the window is out, whether or not it is ordered front: a locker may be a surface
    /// like this one.
    void setSessionLocked(bool isLocked);

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    /// Where the surface is.
    struct Place final {
        QString connector;
        QRect onOutput; ///< Points.
        double scale = 1;

        bool operator==(const Place&) const = default;
    };

    void followSeat(WaylandSeat& seat);
    [[nodiscard]] std::optional<Place> wantedPlace() const;
    void showOrHide();
    void takeSurface(const Place& place);
    void dropSurface();
    void applyInputRegion();
    void paint(QImage& image, const std::optional<QRegion>& points);
    void showTarget();
    void startToolTipDelay();
    void hideToolTip();

    QWidget* m_content;
    WaylandConnection& m_connection;
    WaylandSeat& m_seat;
    std::function<QRectF()> m_primaryGeometry;
    bool m_isOrderedFront = false;
    bool m_isSessionLocked = false;
    bool m_ignoresMouseEvents = true;
    QRectF m_frame;      ///< In the compositor's space.
    QString m_connector; ///< Of the output that the frame was set on.
    QPainterPath m_clickable;
    QRegion m_due; ///< Changed in this turn of the event loop.
    OncePerTurn m_paintDue;
    std::optional<Place> m_place; ///< Of the surface.
    std::unique_ptr<OverlaySurface> m_surface;
    WidgetPointer m_pointer;
    bool m_isPointerHere = false;
    bool m_isFingerHere = false;
    std::optional<Qt::CursorShape> m_cursor; ///< As shown since the pointer came.
    QString m_toolTipText;
    QBasicTimer m_toolTipTimer; ///< Until it is shown, then until it is hidden.
    std::unique_ptr<WaylandToolTip> m_toolTip;
};

} // namespace brimlet
