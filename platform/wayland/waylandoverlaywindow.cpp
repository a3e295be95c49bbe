#include "platform/wayland/waylandoverlaywindow.h"

#include "platform/qt/desktopgeometry.h"
#include "platform/qt/outlineregion.h"
#include "platform/wayland/overlaysurface.h"
#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandoutputs.h"
#include "platform/wayland/waylandseat.h"
#include "platform/wayland/waylandtooltip.h"

#include <QStyle>
#include <QTimerEvent>

#include <utility>

namespace brimlet {

WaylandOverlayWindow::WaylandOverlayWindow(std::unique_ptr<QWidget> content,
                                           WaylandConnection& connection, WaylandSeat& seat,
                                           std::function<QRectF()> primaryGeometry)
    : QWidget(nullptr, Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus)
    , m_content(content.release())
    , m_connection(connection)
    , m_seat(seat)
    , m_primaryGeometry(std::move(primaryGeometry))
    , m_paintDue([this] {
        if (m_surface) {
            m_surface->update(std::exchange(m_due, {}));
        }
    })
    , m_pointer(*m_content) {
    setAttribute(Qt::WA_DontShowOnScreen);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(QStringLiteral("Brimlet"));
    m_content->setParent(this);
    connect(&connection, &WaylandConnection::ready, this, &WaylandOverlayWindow::showOrHide);
    connect(&connection, &WaylandConnection::lost, this, [this] {
        dropSurface();
        hide();
    });
    connect(&m_pointer, &WidgetPointer::targetChanged, this, &WaylandOverlayWindow::showTarget);
    followSeat(seat);
}

WaylandOverlayWindow::~WaylandOverlayWindow() {
    dropSurface();
}

void WaylandOverlayWindow::followSeat(WaylandSeat& seat) {
    const auto isOurs = [this](wl_surface* surface) {
        return m_surface && surface == m_surface->surface();
    };
    connect(&seat, &WaylandSeat::entered, this, [=, this](wl_surface* surface, QPointF position) {
        m_isPointerHere = isOurs(surface);
        m_cursor.reset();
        if (m_isPointerHere) {
            m_pointer.moveTo(position);
            showTarget(); // the cursor is another surface's until it is set
        }
    });
    connect(&seat, &WaylandSeat::moved, this, [this](QPointF position) {
        if (m_isPointerHere) {
            m_pointer.moveTo(position);
            startToolTipDelay();
        }
    });
    connect(&seat, &WaylandSeat::left, this, [this] {
        if (std::exchange(m_isPointerHere, false)) {
            m_pointer.leave();
        }
    });
    connect(&seat, &WaylandSeat::pressed, this, [this] {
        if (m_isPointerHere) {
            hideToolTip();
            m_pointer.press();
        }
    });
    connect(&seat, &WaylandSeat::released, this, [this] {
        if (m_isPointerHere) {
            m_pointer.release();
        }
    });
    connect(&seat, &WaylandSeat::touched, this, [=, this](wl_surface* surface, QPointF position) {
        m_isFingerHere = isOurs(surface);
        if (m_isFingerHere) {
            m_pointer.moveTo(position);
            m_pointer.press();
        }
    });
    connect(&seat, &WaylandSeat::touchMoved, this, [this](QPointF position) {
        if (m_isFingerHere) {
            m_pointer.moveTo(position);
        }
    });
    connect(&seat, &WaylandSeat::touchEnded, this, [this] {
        if (std::exchange(m_isFingerHere, false)) {
            m_pointer.release();
            m_pointer.leave();
        }
    });
    connect(&seat, &WaylandSeat::touchCancelled, this, [this] {
        if (std::exchange(m_isFingerHere, false)) {
            m_pointer.leave();
        }
    });
}

void WaylandOverlayWindow::orderFrontRegardless() {
    m_isOrderedFront = true;
    showOrHide();
}

void WaylandOverlayWindow::orderOut() {
    m_isOrderedFront = false;
    showOrHide();
}

void WaylandOverlayWindow::setSessionLocked(bool isLocked) {
    m_isSessionLocked = isLocked;
    showOrHide();
}

void WaylandOverlayWindow::setFrame(const Rect& frame) {
    m_frame = toQt(inWholePoints(frame), m_primaryGeometry());
    setGeometry(m_frame.toRect()); // where screen readers look for it
    const QPointF inside(m_frame.center().x(), m_frame.top() + 0.5); // not on an edge
    if (const WaylandOutput* const output = m_connection.outputs().at(inside)) {
        m_connector = output->connector();
    }
}

std::optional<WaylandOverlayWindow::Place> WaylandOverlayWindow::wantedPlace() const {
    if (!m_isOrderedFront || m_isSessionLocked || !m_connection.isReady() ||
        !m_connection.missing().isEmpty()) {
        return std::nullopt;
    }
    const WaylandOutput* const output = m_connection.outputs().named(m_connector);
    if (output == nullptr) {
        return std::nullopt;
    }
    return Place{.connector = m_connector,
                 .onOutput = m_frame.toRect().translated(-output->geometry().topLeft()),
                 .scale = output->exactScale()};
}

void WaylandOverlayWindow::showOrHide() {
    const std::optional<Place> place = wantedPlace();
    if (m_surface && m_place == place) {
        return;
    }
    dropSurface();
    if (place) {
        show();
        takeSurface(*place);
    } else {
        hide();
    }
}

void WaylandOverlayWindow::takeSurface(const Place& place) {
    m_place = place;
    m_surface = std::make_unique<OverlaySurface>(
        m_connection, *m_connection.outputs().named(place.connector), place.onOutput,
        [this](QImage& image, const std::optional<QRegion>& points) { paint(image, points); });
    applyInputRegion();
    const OverlaySurface* const surface = m_surface.get();
    // Queued: the surface must not be destroyed within its signal. It comes back when the window is
    // next ordered front.
    const auto drop = [this, surface] {
        if (m_surface.get() == surface) {
            dropSurface();
            hide();
        }
    };
    connect(m_surface.get(), &OverlaySurface::closed, this, drop, Qt::QueuedConnection);
}

void WaylandOverlayWindow::dropSurface() {
    if (!m_surface) {
        return;
    }
    m_isPointerHere = false;
    m_isFingerHere = false;
    hideToolTip();
    m_surface.reset();
    m_place.reset();
    // Without a surface it shows no cursor: when the program ends, the seat is gone by now.
    m_pointer.leave();
}

void WaylandOverlayWindow::setIgnoresMouseEvents(bool ignores) {
    if (m_ignoresMouseEvents != ignores) {
        m_ignoresMouseEvents = ignores;
        applyInputRegion();
    }
}

void WaylandOverlayWindow::setRegions(const QPainterPath& clickable,
                                      const QPainterPath& /*painted*/) {
    m_clickable = clickable;
    applyInputRegion();
    // Capsules that have gone or moved are cleared.
    if (m_surface) {
        m_surface->update(std::nullopt);
    }
}

void WaylandOverlayWindow::applyInputRegion() {
    if (m_surface) {
        m_surface->setInputRegion(m_ignoresMouseEvents ? QRegion() : pixelsInside(m_clickable, 1));
    }
}

void WaylandOverlayWindow::updateContent(const QRegion& points) {
    m_due += points;
    m_paintDue.schedule();
}

void WaylandOverlayWindow::showTexts(std::span<const TextStrip> texts) {
    if (m_surface) {
        m_surface->showTexts(texts);
    }
}

void WaylandOverlayWindow::paint(QImage& image, const std::optional<QRegion>& points) {
    if (!points) {
        image.fill(Qt::transparent);
    }
    const QRegion region = points.value_or(QRegion(m_content->rect())) & m_content->rect();
    m_content->render(&image, region.boundingRect().topLeft(), region, QWidget::DrawChildren);
}

/// Shows the cursor and, after a while, the tooltip of what is below the pointer.
void WaylandOverlayWindow::showTarget() {
    if (m_surface && m_isPointerHere && m_cursor != m_pointer.cursor()) {
        m_cursor = m_pointer.cursor();
        m_seat.showCursor(*m_cursor, m_surface->scale());
    }
    if (m_toolTipText != m_pointer.toolTip()) {
        hideToolTip();
        m_toolTipText = m_pointer.toolTip();
        startToolTipDelay();
    }
}

void WaylandOverlayWindow::startToolTipDelay() {
    if (!m_toolTip && !m_toolTipText.isEmpty()) {
        m_toolTipTimer.start(style()->styleHint(QStyle::SH_ToolTip_WakeUpDelay), this);
    }
}

void WaylandOverlayWindow::hideToolTip() {
    m_toolTipTimer.stop();
    m_toolTip.reset();
}

void WaylandOverlayWindow::timerEvent(QTimerEvent* event) {
    if (event->timerId() != m_toolTipTimer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    const bool wasShown = m_toolTip != nullptr;
    hideToolTip();
    if (!wasShown && m_surface && m_isPointerHere) {
        m_toolTip = std::make_unique<WaylandToolTip>(m_connection, *m_surface,
                                                     m_pointer.targetBox(), m_toolTipText);
        constexpr int kShownFor = 10'000; // as Qt's own, in milliseconds
        m_toolTipTimer.start(kShownFor, this);
    }
}

/// Qt paints nothing by itself, since it has nowhere to show it.
bool WaylandOverlayWindow::event(QEvent* event) {
    return event->type() == QEvent::UpdateRequest || QWidget::event(event);
}

void WaylandOverlayWindow::resizeEvent(QResizeEvent* /*event*/) {
    m_content->setGeometry(rect());
}

} // namespace brimlet
