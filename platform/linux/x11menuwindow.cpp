#include "platform/linux/x11menuwindow.h"

#include "platform/linux/laptopsymbol.h"
#include "platform/linux/windowmanager.h"
#include "platform/linux/x11.h"
#include "platform/linux/x11menuscreens.h"
#include "platform/linux/x11watch.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/menuplacement.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace brimlet {
namespace {

constexpr int kFade = 120; // milliseconds
/// How far the panel moves while it opens, in points.
constexpr int kSlide = 4;

} // namespace

X11MenuWindow::X11MenuWindow(std::unique_ptr<QWidget> content,
                             std::function<QRectF()> primaryGeometry,
                             const ReduceMotion& reduceMotion, RoundedPath roundedPath)
    // Not a tool window, which Qt declares transient for a window that window managers do not know.
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
    , m_content(content.release())
    , m_primaryGeometry(std::move(primaryGeometry))
    , m_reduceMotion(reduceMotion)
    , m_roundedPath(roundedPath) {
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Brimlet panel"));
    setWindowIcon(laptopSymbol());
    m_content->setParent(this);
    // While it activates the window, a busy window manager may take the keyboard away for a moment.
    constexpr std::chrono::milliseconds kDismissalDelay{100};
    m_dismissal.setInterval(kDismissalDelay);
    m_dismissal.setSingleShot(true);
    connect(&m_dismissal, &QTimer::timeout, this, &X11MenuWindow::dismiss);
    m_fade.setStartValue(0.0);
    m_fade.setEndValue(1.0);
    m_fade.setDuration(kFade);
    m_fade.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_fade, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& progress) { setOpening(progress.toDouble()); });
    connect(&m_fade, &QVariantAnimation::finished, this, [this] {
        if (m_isClosing) {
            hide();
        }
    });
    watchSway();
    watchOutside();
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &X11MenuWindow::followScreen);
    for (QScreen* const screen : QGuiApplication::screens()) {
        followScreen(screen);
    }
}

/// Moves the open panel when a bar reserves or releases an edge of the screen.
void X11MenuWindow::followScreen(QScreen* screen) {
    connect(screen, &QScreen::availableGeometryChanged, this, [this] {
        if (isVisible()) {
            fit();
        }
    });
}

void X11MenuWindow::present(const std::optional<Rect>& item) {
    if (m_isClosing) {
        hide();
    }
    if (!isVisible()) {
        m_dismissal.stop();
        destroyNativeWindow();
        m_item = item ? std::optional(toQtRect(*item)) : std::nullopt;
        // Focus starts before the first control, so that no key press activates one by accident.
        m_content->setFocus();
        x11::declareAsPanel(winId());
        m_hasCompositor = X11Watch::shared().hasCompositor();
        if (isAnimated()) {
            m_fade.setDirection(QAbstractAnimation::Forward);
            m_fade.start();
        } else {
            setOpening(1);
        }
    }
    show();
    raise();
    activateWindow();
    x11::activate(winId());
}

bool X11MenuWindow::isAnimated() const {
    return m_hasCompositor && !m_reduceMotion.isOn();
}

void X11MenuWindow::setOpening(double progress) {
    setWindowOpacity(progress);
    const QPoint place = m_panel.topLeft() + QPoint(0, qRound((1 - progress) * m_slide));
    if (m_content->pos() != place) {
        m_content->move(place);
        update();
    }
}

void X11MenuWindow::follow(const Rect& item) {
    if (isPresented() && m_item != toQtRect(item)) {
        m_item = toQtRect(item);
        fit();
    }
}

QRect X11MenuWindow::toQtRect(const Rect& item) const {
    return toQt(item, m_primaryGeometry()).toRect();
}

void X11MenuWindow::dismiss() {
    if (!isPresented()) {
        return;
    }
    if (!isAnimated()) {
        hide();
        return;
    }
    m_isClosing = true;
    endPresentation();
    m_dismissals.notify();
    m_content->setFocus(); // a key press activates no control any more
    applyInputShape();
    m_fade.setDirection(QAbstractAnimation::Backward);
    m_fade.start();
}

void X11MenuWindow::endPresentation() {
    m_dismissal.stop();
    if (m_sway) {
        m_sway->stop();
    }
    m_outside.setActive(false);
    m_desktop.hide();
}

/// While it closes, no key moves the focus to a control.
bool X11MenuWindow::focusNextPrevChild(bool isNext) {
    return !m_isClosing && QWidget::focusNextPrevChild(isNext);
}

void X11MenuWindow::destroyNativeWindow() {
    if (!isVisible()) {
        destroy();
    }
}

ObserverToken X11MenuWindow::observeDismissals(std::function<void()> dismissed) {
    return m_dismissals.add(std::move(dismissed));
}

void X11MenuWindow::fit() {
    if (m_isClosing) {
        return;
    }
    const auto screens = x11MenuScreens(m_sway ? m_sway->areas() : std::vector<QRect>());
    const auto panel = menuFrame(m_content->sizeHint(), m_item, screens);
    if (!panel) {
        return;
    }
    m_frame = m_hasCompositor ? withMargins(*panel, kPanelShadow, screens) : *panel;
    m_isFrameRestored = false;
    m_panel = panel->translated(-m_frame.topLeft());
    const QScreen* const screen = QGuiApplication::screenAt(panel->center());
    const bool isLow = screen != nullptr && panel->center().y() > screen->geometry().center().y();
    m_slide = isLow ? kSlide : -kSlide;
    m_content->setGeometry(m_panel);
    if (m_fade.state() == QAbstractAnimation::Running) {
        setOpening(m_fade.currentValue().toDouble());
    }
    if (m_sway) {
        resize(m_frame.size()); // sway would centre it at a request for a place, too
        if (isVisible()) {
            m_sway->place(windowTitle(), toX11Pixels(m_frame.topLeft()));
        }
    } else {
        setGeometry(m_frame);
    }
    applyInputShape();
}

void X11MenuWindow::applyInputShape() {
    if (const WId window = internalWinId(); window != 0) {
        const double scale = devicePixelRatioF();
        const QRectF pixels(m_panel.topLeft().toPointF() * scale, m_panel.size().toSizeF() * scale);
        x11::setInputShape(window, m_isClosing ? QRegion() : QRegion(pixels.toAlignedRect()));
    }
}

void X11MenuWindow::restoreFrame() {
    if (!isVisible() || geometry() == m_frame) {
        return;
    }
    if (m_sway && size() == m_frame.size()) {
        m_sway->placeAgain();
    } else if (!m_isFrameRestored) {
        m_isFrameRestored = true;
        // The native window's, which may still differ from the widget's: that one would request
        // only what differs from its own.
        windowHandle()->setGeometry(m_frame);
    }
}

void X11MenuWindow::watchSway() {
    const QString socket = qEnvironmentVariable("SWAYSOCK");
    if (!socket.isEmpty() && x11::windowManagerName() == QStringLiteral("wlroots wm")) {
        m_sway.emplace(socket);
        connect(&*m_sway, &SwayDesktop::areasChanged, this, [this] {
            if (isVisible()) {
                fit();
            }
        });
    }
}

void X11MenuWindow::watchOutside() {
    connect(&m_outside, &OutsideWatch::workAreaChanged, this, &X11MenuWindow::fit);
    connect(&m_outside, &OutsideWatch::clicked, this, [this] {
        // A click beside an open menu of the panel's own only closes that.
        if (QApplication::activePopupWidget() == nullptr) {
            QMetaObject::invokeMethod(this, &X11MenuWindow::dismiss, Qt::QueuedConnection);
        }
    });
}

bool X11MenuWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate) {
        m_dismissal.start();
    } else if (event->type() == QEvent::WindowActivate) {
        m_dismissal.stop();
        applyInputShape(); // openbox does not see one that was set before it managed the window
    } else if (event->type() == QEvent::LayoutRequest) {
        fit();
    } else if (event->type() == QEvent::Resize || event->type() == QEvent::Move) {
        m_restoreFrame.schedule();
    }
    return QWidget::event(event);
}

void X11MenuWindow::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRect panel = m_content->geometry();
    if (!m_hasCompositor) {
        paintPanel(painter, panel, m_content->palette(), 0, m_roundedPath);
        return;
    }
    // Nothing that the content updates is nearer to the edge.
    constexpr int kEdge = 16;
    if (!panel.adjusted(kEdge, kEdge, -kEdge, -kEdge).contains(event->rect())) {
        paintPanelShadow(painter, panel);
    }
    paintPanel(painter, panel, m_content->palette(), kPanelCorner, m_roundedPath);
}

void X11MenuWindow::showEvent(QShowEvent* /*event*/) {
    fit(); // the content has updated its size hint by now
    if (m_isClosing) {
        return;
    }
    if (m_sway) {
        m_sway->requestAreas();
    }
    m_outside.setActive(true);
    m_desktop.show();
}

void X11MenuWindow::hideEvent(QHideEvent* event) {
    if (event->spontaneous()) {
        m_dismissal.stop();
        if (m_sway) {
            m_sway->stop();
        }
        return;
    }
    m_fade.stop();
    endPresentation();
    if (!std::exchange(m_isClosing, false)) {
        m_dismissals.notify();
    }
    // Queued, because this may run inside an event of the native window.
    QMetaObject::invokeMethod(this, &X11MenuWindow::destroyNativeWindow, Qt::QueuedConnection);
}

void X11MenuWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        dismiss();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace brimlet
