#include "overlay/notchpill.h"

#include "creative/continuouspaths.h"
#include "creative/notchfont.h"
#include "overlay/capsule.h"
#include "overlay/pilltexts.h"
#include "platform/pixelspace.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>

namespace brimlet {
namespace {

// Points.
constexpr int kHorizontalPadding = 7;
constexpr int kSpacing = 5;
constexpr int kMarkSize = 16;

CarRadioStyle lineStyle() {
    return {.font = NotchFont::pill(),
            .color = Qt::white,
            .background = kCapsuleBackground,
            .idle = 16,
            .holdStart = 1.6,
            .pointsPerSecond = 22,
            .holdEnd = 1.4};
}

/// Fills the pixels of `outer` outside `inner`: what Qt clears, in whole points, may be wider than
/// what is painted there.
void fillAround(QPainter& painter, const QRect& inner, const QRect& outer, const QColor& color) {
    if (inner == outer) {
        return;
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& part : QRegion(outer) - inner) {
        painter.fillRect(part, color);
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

} // namespace

NotchPill::NotchPill(const CreativeEnvironment& environment, QWidget* parent)
    : QWidget(parent)
    , m_mark(environment.images)
    , m_line(lineStyle(), environment.clock, environment.reduceMotion) {
    // It paints all its pixels, also the transparent ones, so nothing behind it is repainted.
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(&m_mark, &CreativeMark::changed, this, [this] { Q_EMIT changed(geometry()); });
    connect(&m_line, &CarRadioLine::changed, this,
            [this] { Q_EMIT changed(lineBox().toAlignedRect().translated(pos())); });
    connect(&m_line, &CarRadioLine::moved, this, &NotchPill::moved);
}

void NotchPill::setFrame(const QRectF& frame) {
    const QRect before = geometry();
    setGeometry(frame.toAlignedRect());
    const QRectF capsule = frame.translated(-pos());
    if (m_capsule != capsule || geometry() != before) {
        m_capsule = capsule;
        m_line.setContainerWidth(lineBox().width());
        Q_EMIT changed(geometry()); // Qt may move pixels that are older than what is shown
    }
}

void NotchPill::setCreative(const std::optional<SlotCreative>& creative, bool isClickable) {
    if (m_creative == creative && m_isClickable == isClickable) {
        return;
    }
    m_creative = creative;
    m_isClickable = isClickable;
    setToolTip(asPlainToolTip(destination()));
    if (!isClickable) {
        setCursor(Qt::ArrowCursor);
    }
    if (creative) {
        m_mark.setCreative(creative->assetURL, creative->brandName);
        m_line.setTexts(creative->brandName, creative->tagline);
    } else {
        m_mark.clear();
    }
    QAccessibleEvent renamed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&renamed);
}

// The layout of a pill in points: 108 wide, or 36 without text, and 24 high.
//
//   |<-7->[ mark 16 ]<-5->[ line, the rest ]<-7->|

QRectF NotchPill::markBox() const {
    return {m_capsule.x() + kHorizontalPadding,
            m_capsule.y() + (m_capsule.height() - kMarkSize) / 2, kMarkSize, kMarkSize};
}

QRectF NotchPill::lineBox() const {
    // Above and below, where the capsule's ends curve.
    constexpr int kFree = 2;
    return m_capsule.adjusted(kHorizontalPadding + kMarkSize + kSpacing, kFree, -kHorizontalPadding,
                              -kFree);
}

QPainterPath NotchPill::capsule() const {
    return capsulePath(m_capsule.translated(pos()));
}

QString NotchPill::spokenText() const {
    return m_creative ? spokenTextOf(*m_creative) : QString();
}

QString NotchPill::destination() const {
    return m_isClickable ? toolTipOf(*m_creative) : QString();
}

/// The window shows the tooltip, below the capsule.
bool NotchPill::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        event->ignore();
        return false;
    }
    return QWidget::event(event);
}

void NotchPill::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    if (!lineBox().toAlignedRect().contains(event->rect())) {
        const PixelSpace pixels(painter);
        paintBackground(painter, pixels);
        m_mark.paint(painter, pixels.toPixels(markBox()), pixels.devicePixelRatio());
    }
    paintLine(painter);
}

void NotchPill::paintLine(QPainter& painter) {
    const PixelSpace pixels(painter);
    m_line.setDevicePixelRatio(pixels.devicePixelRatio());
    const QRect box = pixels.toPixels(lineBox());
    fillAround(painter, box, pixels.toPixels(lineBox().toAlignedRect()), kCapsuleBackground);
    m_line.paint(painter, box);
}

void NotchPill::paintBackground(QPainter& painter, const PixelSpace& pixels) {
    const QRect box = pixels.toPixels(m_capsule);
    fillAround(painter, box, pixels.toPixels(rect()), Qt::transparent);
    if (m_background.size() != box.size()) {
        m_background = capsulePicture(box.size(), pixels.devicePixelRatio());
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(box.topLeft(), m_background);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void NotchPill::showEvent(QShowEvent* /*event*/) {
    m_mark.appear();
    m_line.appear();
}

void NotchPill::hideEvent(QHideEvent* /*event*/) {
    m_mark.disappear();
    m_line.disappear();
}

void NotchPill::enterEvent(QEnterEvent* /*event*/) {
    if (m_isClickable) {
        setCursor(Qt::PointingHandCursor);
    }
}

void NotchPill::leaveEvent(QEvent* /*event*/) {
    setCursor(Qt::ArrowCursor);
}

void NotchPill::mousePressEvent(QMouseEvent* event) {
    event->setAccepted(m_isClickable && event->button() == Qt::LeftButton);
}

void NotchPill::mouseReleaseEvent(QMouseEvent* event) {
    if (m_isClickable && event->button() == Qt::LeftButton &&
        m_capsule.contains(event->position())) {
        Q_EMIT clicked();
    }
}

} // namespace brimlet
