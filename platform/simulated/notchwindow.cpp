#include "platform/simulated/notchwindow.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace brimlet {

NotchWindow::NotchWindow()
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint |
                           Qt::NoDropShadowWindowHint | Qt::WindowTransparentForInput) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(QStringLiteral("Simulated notch"));
}

void NotchWindow::place(const std::optional<QRect>& notch) {
    if (!notch) {
        hide();
        return;
    }
    setGeometry(*notch);
    show();
    Q_EMIT placed();
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
