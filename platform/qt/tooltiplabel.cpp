#include "platform/qt/tooltiplabel.h"

#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace brimlet {

ToolTipLabel::ToolTipLabel(const QString& text, bool isRound)
    : QLabel(text, nullptr,
             Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint |
                 Qt::NoDropShadowWindowHint)
    , m_isRound(isRound) {
    setAttribute(Qt::WA_TranslucentBackground, isRound);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFont(QToolTip::font());
    QPalette colors;
    colors.setColor(QPalette::WindowText, Qt::white);
    setPalette(colors);
    setContentsMargins(9, 5, 9, 5);
    resize(sizeHint());
}

QPoint ToolTipLabel::placeBelow(const QRect& box, QSize toolTip, const QRect& screen) {
    const int centred = box.x() + (box.width() - toolTip.width()) / 2;
    const int last = screen.x() + screen.width() - toolTip.width() - kGap;
    return {std::max(screen.x() + kGap, std::min(centred, last)), box.y() + box.height() + kGap};
}

void ToolTipLabel::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        constexpr QColor kBackground(0, 0, 0, 245);    // a capsule's
        constexpr QColor kHairline(255, 255, 255, 51); // white at opacity 0.2
        const double corner = m_isRound ? 8 : 0;
        painter.setPen(QPen(kHairline, 1));
        painter.setBrush(kBackground);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
    }
    QLabel::paintEvent(event);
}

} // namespace brimlet
