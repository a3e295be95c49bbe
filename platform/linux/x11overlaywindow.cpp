#include "platform/linux/x11overlaywindow.h"

#include "platform/linux/windowmanager.h"
#include "platform/linux/x11.h"
#include "platform/linux/x11watch.h"
#include "platform/qt/contentpainting.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/outlineregion.h"

#include <QHelpEvent>
#include <QWindow>

#include <utility>

namespace brimlet {

X11OverlayWindow::X11OverlayWindow(std::unique_ptr<QWidget> content,
                                   std::function<QRectF()> primaryGeometry, bool isFitted)
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint |
                           Qt::NoDropShadowWindowHint)
    , m_content(content.release())
    , m_primaryGeometry(std::move(primaryGeometry))
    , m_isFitted(isFitted) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setWindowTitle(QStringLiteral("Brimlet"));
    m_content->setParent(this);
}

void X11OverlayWindow::orderFrontRegardless() {
    m_isOrderedFront = true;
    if (m_isSessionLocked) {
        return;
    }
    // Shaped before it is mapped, and again each time: a new native window or scale factor is not
    // announced.
    create();
    windowHandle()->installEventFilter(this);
    m_texts.setWindow(static_cast<std::uint32_t>(windowHandle()->winId()));
    applyShapes();
    bringForward();
}

/// Sends nothing while it is shown and the stacking has not changed since.
void X11OverlayWindow::bringForward() {
    const std::uint64_t stacking = X11Watch::shared().stackingSerial();
    if (isVisible() && stacking == m_stacking) {
        return;
    }
    m_stacking = stacking;
    if (isVisible()) {
        x11::raiseAboveManagedWindows(internalWinId());
    } else {
        show();
        x11::removeParentHint(internalWinId());
    }
}

bool X11OverlayWindow::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const QPoint position = static_cast<QHelpEvent*>(event)->pos();
    if (QWidget* const target = m_content->childAt(m_content->mapFromParent(position))) {
        m_toolTip.showFor(*target);
        event->accept(); // the next tooltip comes without a delay
    }
    return true;
}

/// Between Qt's raise of a tooltip that is shown and its mapping, so that it never covers a menu.
void X11OverlayWindow::showEvent(QShowEvent* /*event*/) {
    x11::raiseAboveManagedWindows(internalWinId());
}

void X11OverlayWindow::hideEvent(QHideEvent* /*event*/) {
    m_texts.clear();
}

void X11OverlayWindow::orderOut() {
    m_isOrderedFront = false;
    hide();
}

void X11OverlayWindow::setSessionLocked(bool isLocked) {
    m_isSessionLocked = isLocked;
    if (isLocked) {
        hide();
    } else if (m_isOrderedFront) {
        orderFrontRegardless();
    }
}

void X11OverlayWindow::setFrame(const Rect& frame) {
    m_frame = toQt(inWholePoints(frame), m_primaryGeometry()).toRect();
    place();
}

void X11OverlayWindow::place() {
    m_content->resize(m_frame.size()); // first, because it may change what is painted
    QRect shown(QPoint(), m_frame.size());
    if (m_isFitted) {
        shown &= m_painted.boundingRect().toAlignedRect();
        shown.setSize(shown.size().expandedTo({1, 1}));
    }
    m_content->move(-shown.topLeft());
    setGeometry(shown.translated(m_frame.topLeft()));
}

void X11OverlayWindow::setIgnoresMouseEvents(bool ignores) {
    if (m_ignoresMouseEvents != ignores) {
        m_ignoresMouseEvents = ignores;
        applyShapes();
    }
}

void X11OverlayWindow::setRegions(const QPainterPath& clickable, const QPainterPath& painted) {
    m_clickable = clickable;
    m_painted = painted;
    m_scaledBy = 0;
    place();
    applyShapes();
}

void X11OverlayWindow::updateContent(const QRegion& points) {
    updatePoints(*m_content, points);
}

void X11OverlayWindow::showTexts(std::span<const TextStrip> texts) {
    if (!m_texts.show(texts)) {
        paintTexts(*m_content, texts);
    }
}

bool X11OverlayWindow::eventFilter(QObject* /*window*/, QEvent* event) {
    if (event->type() == QEvent::Expose) {
        // Qt sends what the X server lost from its backing store, which does not have the copied
        // texts.
        updatePoints(*m_content, m_content->rect());
    } else if (event->type() == QEvent::PlatformSurface) {
        m_texts.setWindow(0); // the native window goes, or is new
    }
    return false;
}

void X11OverlayWindow::applyShapes() {
    const WId window = internalWinId();
    if (window == 0) {
        return;
    }
    if (m_scaledBy != devicePixelRatioF()) {
        m_scaledBy = devicePixelRatioF();
        m_clickablePixels = pixelsInside(m_clickable.translated(m_content->pos()), m_scaledBy);
        m_paintedPixels = pixelsInside(m_painted.translated(m_content->pos()), m_scaledBy);
    }
    const bool isNew = std::exchange(m_shapedWindow, window) != window;
    const QRegion input = m_ignoresMouseEvents ? QRegion() : m_clickablePixels;
    if (isNew || m_inputShape != input) {
        m_inputShape = input;
        x11::setInputShape(window, input);
    }
    std::optional<QRegion> bounding;
    if (!X11Watch::shared().hasCompositor()) {
        bounding = m_paintedPixels;
    }
    if (isNew || m_boundingShape != bounding) {
        m_boundingShape = bounding;
        x11::setBoundingShape(window, bounding);
    }
}

} // namespace brimlet
