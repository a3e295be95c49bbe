#include "menu/slimscrollbar.h"

#include "menu/hosttheme.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

namespace brimlet {

SlimScrollBar::SlimScrollBar(QWidget* parent)
    : QScrollBar(Qt::Vertical, parent) {
    setFixedWidth(kWidth);
}

void SlimScrollBar::setHighlighted(bool isHighlighted) {
    m_isHighlighted = isHighlighted;
    update();
}

void SlimScrollBar::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF handle(
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this));
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_isHighlighted ? HostTheme::accent() : HostTheme::faint());
    constexpr double kBar = 4;
    const QRectF bar((width() - kBar) / 2, handle.top(), kBar, handle.height());
    painter.drawRoundedRect(bar, kBar / 2, kBar / 2);
}

} // namespace brimlet
