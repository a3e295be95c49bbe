#include "menu/livedot.h"

#include "creative/notchfont.h"
#include "menu/hosttheme.h"
#include "menu/textlines.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace brimlet {
namespace {

// Points.
constexpr int kDot = 7;
constexpr int kSpacing = 5;

QString wordFor(bool live) {
    return live ? LiveDot::tr("Live") : LiveDot::tr("Unfilled");
}

} // namespace

LiveDot::LiveDot(bool live, bool compact)
    : m_live(live) {
    setFont(systemFont(compact ? 11 : 12, QFont::Medium));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(wordFor(live));
}

void LiveDot::setLive(bool live) {
    if (m_live == live) {
        return;
    }
    m_live = live;
    setAccessibleName(wordFor(live));
    updateGeometry();
    update();
}

QSize LiveDot::sizeHint() const {
    const QFontMetricsF metrics(font());
    return {kDot + kSpacing + qCeil(metrics.horizontalAdvance(wordFor(m_live))),
            std::max(kDot, lineHeight(font()))};
}

void LiveDot::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_live ? HostTheme::live() : HostTheme::faint());
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    painter.drawEllipse(
        QRectF(isMirrored ? width() - kDot : 0, (height() - kDot) / 2.0, kDot, kDot));
    painter.setFont(font());
    painter.setPen(m_live ? HostTheme::live() : HostTheme::dim());
    const QRect word = rect().adjusted(kDot + kSpacing, 0, 0, 0);
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), word),
                     Qt::AlignVCenter | Qt::TextSingleLine, wordFor(m_live));
}

} // namespace brimlet
