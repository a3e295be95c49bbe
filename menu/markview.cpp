#include "menu/markview.h"

#include "menu/hosttheme.h"
#include "platform/pixelspace.h"

#include <QPainter>

namespace brimlet {
namespace {

// Points.
constexpr int kMark = 18;
constexpr int kSquare = 22;

} // namespace

MarkView::MarkView(const CreativeEnvironment& environment)
    : m_mark(environment.images) {
    setFixedSize(kSquare, kSquare);
    connect(&m_mark, &CreativeMark::changed, this, qOverload<>(&QWidget::update));
}

void MarkView::setCreative(const std::optional<SlotCreative>& creative) {
    if (creative) {
        m_mark.setCreative(creative->assetURL, creative->brandName);
    } else {
        m_mark.clear();
    }
    if (m_hasCreative != creative.has_value()) {
        m_hasCreative = creative.has_value();
        update();
    }
}

void MarkView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_hasCreative ? HostTheme::accent() : HostTheme::line());
    constexpr double kCorner = 6;
    painter.drawRoundedRect(QRectF(rect()), kCorner, kCorner);
    if (!m_hasCreative) {
        return;
    }
    constexpr int kMargin = (kSquare - kMark) / 2;
    const PixelSpace pixels(painter);
    m_mark.paint(painter, pixels.toPixels({kMargin, kMargin, kMark, kMark}),
                 pixels.devicePixelRatio());
}

void MarkView::showEvent(QShowEvent* /*event*/) {
    m_mark.appear();
}

void MarkView::hideEvent(QHideEvent* /*event*/) {
    m_mark.disappear();
}

} // namespace brimlet
