#include "menu/hostbuttons.h"

#include "creative/continuouspaths.h"
#include "creative/notchfont.h"
#include "menu/focusmark.h"
#include "menu/hosttheme.h"
#include "menu/textlines.h"

#include <QKeyEvent>
#include <QPainter>

namespace brimlet {
namespace {

constexpr int kPadding = 9;

QColor faded(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

} // namespace

HostButton::HostButton(const QString& label, QFont::Weight weight) {
    setText(label);
    setAccessibleName(label);
    setFont(systemFont(13, weight));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

QSize HostButton::sizeHint() const {
    const QFontMetricsF metrics(font());
    return {qCeil(metrics.horizontalAdvance(text())), lineHeight(font()) + 2 * kPadding};
}

QSize HostButton::minimumSizeHint() const {
    return sizeHint();
}

void HostButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box(rect());
    if (isDown()) {
        constexpr double kPressed = 0.96;
        painter.translate(box.center());
        painter.scale(kPressed, kPressed);
        painter.translate(-box.center());
    }
    paintCapsule(painter, capsulePath(box));
    if (hasFocus() && m_isFocusMarked) {
        painter.setBrush(Qt::NoBrush);
        painter.strokePath(capsulePath(box.adjusted(3, 3, -3, -3)), QPen(Qt::white, 1.5));
    }
    painter.setFont(font());
    painter.setPen(Qt::white);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

void HostButton::focusInEvent(QFocusEvent* event) {
    m_isFocusMarked = isFocusMarked(event->reason(), m_isFocusMarked);
    QAbstractButton::focusInEvent(event);
}

void HostButton::keyPressEvent(QKeyEvent* event) {
    if (!m_isFocusMarked) {
        m_isFocusMarked = true;
        update();
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) {
            click();
        }
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

HostPrimaryButton::HostPrimaryButton(const QString& label)
    : HostButton(label, QFont::DemiBold) {}

void HostPrimaryButton::paintCapsule(QPainter& painter, const QPainterPath& capsule) const {
    painter.fillPath(capsule, faded(HostTheme::accent(), isDown() ? 0.85 : 1));
}

HostGhostButton::HostGhostButton(const QString& label)
    : HostButton(label, QFont::Medium) {}

void HostGhostButton::paintCapsule(QPainter& painter, const QPainterPath& capsule) const {
    painter.fillPath(capsule, faded(HostTheme::card(), isDown() ? 0.7 : 1));
    painter.strokePath(capsulePath(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5)),
                       QPen(HostTheme::line(), 1));
}

} // namespace brimlet
