#include "platform/simulated/notchwindow.h"

#include "platform/linux/x11watch.h"
#include "platform/qt/desktopgeometry.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <utility>

namespace brimlet {

NotchWindow::NotchWindow()
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint |
                           Qt::NoDropShadowWindowHint | Qt::WindowTransparentForInput) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(QStringLiteral("Simulated notch"));
}

void NotchWindow::place(const std::optional<Rect>& notch, const QRectF& primary) {
    if (!notch) {
        hide();
        return;
    }
    setGeometry(toQt(*notch, primary).toRect());
    show();
    raise();
}

void NotchWindow::bringForward() {
    // Windows of this program count too, because the overlay raises itself. Raising this window
    // changes the serial once more, which leads to one more raise without effect.
    if (std::exchange(m_stackingSerial, X11Watch::shared().stackingSerial()) != m_stackingSerial) {
        raise();
    }
}

void NotchWindow::paintEvent(QPaintEvent* /*event*/) {
    constexpr qreal kCorner = 9;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // Only the lower corners are rounded: the upper ones are above the window.
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()).adjusted(0, -2 * kCorner, 0, 0), kCorner, kCorner);
    painter.fillPath(shape, Qt::black);
}

std::optional<Rect> notchOf(const std::optional<Screen>& builtIn) {
    if (!builtIn || !builtIn->auxiliaryTopLeftArea || !builtIn->auxiliaryTopRightArea) {
        return std::nullopt;
    }
    const Rect& left = *builtIn->auxiliaryTopLeftArea;
    const Rect& right = *builtIn->auxiliaryTopRightArea;
    const double width = right.minX() - left.maxX();
    const double bottom = std::min(left.minY(), right.minY());
    if (width <= 0 || bottom >= builtIn->frame.maxY()) {
        return std::nullopt;
    }
    return Rect{left.maxX(), bottom, width, builtIn->frame.maxY() - bottom};
}

} // namespace brimlet
