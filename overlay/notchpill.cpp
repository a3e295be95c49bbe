#include "overlay/notchpill.h"

#include "creative/notchfont.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace brimlet {
namespace {

constexpr int kHorizontalPadding = 7;

QPainterPath capsulePath(const QRectF& box) {
    QPainterPath path;
    path.addRoundedRect(box, box.height() / 2, box.height() / 2);
    return path;
}

QString restingText(const SlotCreative& creative) {
    const QString brand = creative.brandName.trimmed();
    return (brand.isEmpty() ? creative.tagline : brand).simplified();
}

} // namespace

NotchPill::NotchPill(QWidget* parent)
    : QWidget(parent) {}

void NotchPill::setCreative(const std::optional<SlotCreative>& creative, bool isClickable) {
    m_isClickable = isClickable;
    if (m_creative == creative) {
        return;
    }
    m_creative = creative;
    setAccessibleName(creative ? restingText(*creative) : QString());
    update();
}

QRegion NotchPill::capsule() const {
    return QRegion(capsulePath(rect()).toFillPolygon().toPolygon()).translated(pos());
}

void NotchPill::paintEvent(QPaintEvent* /*event*/) {
    if (!m_creative) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath capsule = capsulePath(rect());
    painter.fillPath(capsule, QColor::fromRgbF(0, 0, 0, 0.96F));
    // The rim is stroked on the outline and clipped to the capsule, which leaves its inner half.
    painter.setClipPath(capsule);
    painter.strokePath(capsule, QPen(QColor::fromRgbF(1, 1, 1, 0.14F), 0.5));

    const QRect line = rect().adjusted(kHorizontalPadding, 0, -kHorizontalPadding, 0);
    painter.setFont(NotchFont::pill());
    painter.setPen(Qt::white);
    const QString text =
        painter.fontMetrics().elidedText(restingText(*m_creative), Qt::ElideRight, line.width());
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
}

void NotchPill::mousePressEvent(QMouseEvent* event) {
    event->setAccepted(m_isClickable && event->button() == Qt::LeftButton);
}

void NotchPill::mouseReleaseEvent(QMouseEvent* event) {
    if (m_isClickable && event->button() == Qt::LeftButton &&
        rect().contains(event->position().toPoint())) {
        Q_EMIT clicked();
    }
}

} // namespace brimlet
