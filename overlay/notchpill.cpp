#include "overlay/notchpill.h"

#include "creative/continuouspaths.h"
#include "creative/notchfont.h"
#include "creative/pixelgrid.h"
#include "overlay/capsule.h"
#include "overlay/pilltexts.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>

namespace brimlet {
namespace {

constexpr int kHorizontalPadding = 7;
constexpr int kSpacing = 5;
constexpr int kMarkSize = 16;

/// As long as it lives, a painter paints in whole pixels of the screen, whatever its scale: sharp
/// edges, plain copies.
class PixelSpace final {
public:
    /// The painter is untransformed.
    explicit PixelSpace(QPainter& painter)
        : m_painter(painter)
        , m_toScreen(painter.deviceTransform()) {
        painter.setWorldTransform(m_toScreen.inverted());
    }
    ~PixelSpace() { m_painter.setWorldTransform({}); }
    PixelSpace(const PixelSpace&) = delete;
    PixelSpace& operator=(const PixelSpace&) = delete;

    [[nodiscard]] QRect of(const QRect& box) const {
        return snapped(m_toScreen.mapRect(QRectF(box)));
    }
    /// Pixels of what is painted on to a point.
    [[nodiscard]] double devicePixelRatio() const { return m_toScreen.m11(); }

private:
    QPainter& m_painter;
    QTransform m_toScreen;
};

CarRadioStyle lineStyle() {
    return {.font = NotchFont::pill(),
            .color = Qt::white,
            .ground = kCapsuleGround,
            .idle = 16,
            .holdStart = 1.6,
            .pointsPerSecond = 22,
            .holdEnd = 1.4};
}

} // namespace

NotchPill::NotchPill(const CreativeEnvironment& environment, QWidget* parent)
    : QWidget(parent)
    , m_mark(environment.images, kMarkSize)
    , m_line(lineStyle(), environment.clock, environment.reduceMotion) {
    // It paints all of its pixels, the transparent ones too, so nothing behind it is painted again.
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(&m_mark, &CreativeMark::changed, this, qOverload<>(&QWidget::update));
    connect(&m_line, &CarRadioLine::changed, this, [this] { update(lineBox()); });
    connect(&m_line, &CarRadioLine::moved, this, &NotchPill::moved);
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

// What is drawn in a pill of 108 by 24 points, or of 36 without text:
//
//   |<-7->[ mark 16 ]<-5->[ line, what is left ]<-7->|

QRect NotchPill::markBox() const {
    return {kHorizontalPadding, (height() - kMarkSize) / 2, kMarkSize, kMarkSize};
}

QRect NotchPill::lineBox() const {
    // Two points stay free above and below, where the capsule's ends curve.
    constexpr int kFree = 2;
    const int x = kHorizontalPadding + kMarkSize + kSpacing;
    return {x, kFree, width() - x - kHorizontalPadding, height() - 2 * kFree};
}

QRect NotchPill::movingBox() const {
    const QRect box = lineBox();
    const auto [first, end] = m_line.rowsOfText();
    return QRect(box.x(), box.y() + first, box.width(), end - first).translated(pos());
}

QRegion NotchPill::capsule() const {
    if (m_capsuleSize != size()) {
        m_capsuleSize = size();
        m_capsule = QRegion(capsulePath(QRectF(rect())).toFillPolygon().toPolygon());
    }
    return m_capsule.translated(pos());
}

QString NotchPill::spokenText() const {
    return m_creative ? spokenTextOf(*m_creative) : QString();
}

QString NotchPill::destination() const {
    return m_isClickable ? toolTipOf(*m_creative) : QString();
}

void NotchPill::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    if (!lineBox().contains(event->rect())) {
        const PixelSpace pixels(painter);
        paintGround(painter, pixels.of(rect()), pixels.devicePixelRatio());
        m_mark.paint(painter, pixels.of(markBox()), pixels.devicePixelRatio());
    }
    paintLine(painter, {});
}

void NotchPill::paintLine(QPainter& painter, QPoint origin) {
    const PixelSpace pixels(painter);
    m_line.setDevicePixelRatio(pixels.devicePixelRatio());
    m_line.paint(painter, pixels.of(lineBox().translated(origin)));
}

void NotchPill::paintGround(QPainter& painter, const QRect& box, double devicePixelRatio) {
    if (m_ground.size() != box.size()) {
        m_ground = capsulePicture(box.size(), devicePixelRatio);
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(box.topLeft(), m_ground);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void NotchPill::resizeEvent(QResizeEvent* /*event*/) {
    m_line.setContainerWidth(lineBox().width());
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
        rect().contains(event->position().toPoint())) {
        Q_EMIT clicked();
    }
}

} // namespace brimlet
