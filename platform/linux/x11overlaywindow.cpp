#include "platform/linux/x11overlaywindow.h"

#include "platform/linux/x11.h"
#include "platform/linux/x11watch.h"
#include "platform/qt/desktopgeometry.h"

namespace brimlet {
namespace {

std::vector<QRect> inDevicePixels(const QRegion& region, qreal devicePixelRatio) {
    std::vector<QRect> rectangles;
    for (const QRect& part : region) {
        const auto scaled = [&](int value) { return qRound(value * devicePixelRatio); };
        const QPoint topLeft(scaled(part.x()), scaled(part.y()));
        const QPoint end(scaled(part.x() + part.width()), scaled(part.y() + part.height()));
        rectangles.emplace_back(topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y()));
    }
    return rectangles;
}

} // namespace

X11OverlayWindow::X11OverlayWindow(std::unique_ptr<QWidget> content,
                                   std::function<QRectF()> primaryGeometry)
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint |
                           Qt::NoDropShadowWindowHint)
    , m_content(content.release())
    , m_primaryGeometry(std::move(primaryGeometry)) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setWindowTitle(QStringLiteral("Brimlet"));
    m_content->setParent(this);
}

void X11OverlayWindow::orderFrontRegardless() {
    // Shaped before it is mapped, and again each time: a new native window or scale factor is not
    // announced.
    create();
    applyInputShape();
    applyMask();
    bringForward();
}

/// Sends nothing while it is shown and no foreign window changed the stacking since.
void X11OverlayWindow::bringForward() {
    const std::uint64_t arrangement = X11Watch::shared().foreignStackingSerial();
    if (isVisible() && arrangement == m_arrangement) {
        return;
    }
    m_arrangement = arrangement;
    show();
    raise();
}

void X11OverlayWindow::orderOut() {
    hide();
}

void X11OverlayWindow::setFrame(const Rect& frame) {
    setGeometry(toQt(frame, m_primaryGeometry()).toRect());
}

void X11OverlayWindow::setIgnoresMouseEvents(bool ignores) {
    if (m_ignoresMouseEvents != ignores) {
        m_ignoresMouseEvents = ignores;
        applyInputShape();
    }
}

void X11OverlayWindow::setRegions(const QRegion& clickable, const QRegion& painted) {
    m_clickable = clickable;
    m_painted = painted;
    applyInputShape();
    applyMask();
}

void X11OverlayWindow::applyInputShape() {
    const WId window = internalWinId();
    std::vector<QRect> shape =
        inDevicePixels(m_ignoresMouseEvents ? QRegion() : m_clickable, devicePixelRatioF());
    if (window == 0 || (window == m_shapedWindow && shape == m_inputShape)) {
        return;
    }
    x11::setInputShape(window, shape);
    m_shapedWindow = window;
    m_inputShape = std::move(shape);
}

void X11OverlayWindow::applyMask() {
    // An empty region would remove the mask, so "nothing painted" is a pixel outside the window.
    constexpr QRect kOutside(-2, -2, 1, 1);
    const QRegion shown = m_painted.isEmpty() ? QRegion(kOutside) : m_painted;
    const QRegion wanted = X11Watch::shared().hasCompositor() ? QRegion() : shown;
    if (wanted == mask()) {
        return;
    }
    if (wanted.isEmpty()) {
        clearMask();
    } else {
        setMask(wanted);
    }
}

void X11OverlayWindow::resizeEvent(QResizeEvent* /*event*/) {
    m_content->setGeometry(rect());
}

} // namespace brimlet
