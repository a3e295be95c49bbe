#include "platform/linux/x11menuwindow.h"

#include "platform/linux/laptopsymbol.h"
#include "platform/linux/windowmanager.h"
#include "platform/linux/x11menuscreens.h"
#include "platform/linux/x11watch.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/menuplacement.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

namespace brimlet {

X11MenuWindow::X11MenuWindow(std::unique_ptr<QWidget> content,
                             std::function<QRectF()> primaryGeometry)
    // Not a tool window, which Qt declares transient for a window that window managers do not know.
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
    , m_content(content.release())
    , m_primaryGeometry(std::move(primaryGeometry)) {
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Brimlet panel"));
    setWindowIcon(laptopSymbol());
    m_content->setParent(this);
    // While it activates the window, a busy window manager may take the keyboard away for a moment.
    constexpr std::chrono::milliseconds kDismissalDelay{100};
    m_dismissal.setInterval(kDismissalDelay);
    m_dismissal.setSingleShot(true);
    connect(&m_dismissal, &QTimer::timeout, this, &X11MenuWindow::dismiss);
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
    if (!isVisible()) {
        destroyNativeWindow();
        m_item = item ? std::optional(toQtRect(*item)) : std::nullopt;
        // Focus starts before the first control, so that no key press activates one by accident.
        m_content->setFocus();
        x11::declareAsPanel(winId());
    }
    m_isRound = X11Watch::shared().hasCompositor();
    show();
    raise();
    activateWindow();
    x11::activate(winId());
}

void X11MenuWindow::follow(const Rect& item) {
    if (isVisible() && m_item != toQtRect(item)) {
        m_item = toQtRect(item);
        fit();
    }
}

QRect X11MenuWindow::toQtRect(const Rect& item) const {
    return toQt(item, m_primaryGeometry()).toRect();
}

void X11MenuWindow::dismiss() {
    hide();
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
    const auto screens = x11MenuScreens(m_sway ? m_sway->areas() : std::vector<QRect>());
    if (const auto frame = menuFrame(m_content->sizeHint(), m_item, screens)) {
        m_content->resize(frame->size());
        m_frame = *frame;
        m_isFrameRestored = false;
        if (m_sway) {
            resize(frame->size()); // sway would centre it at a request for a place, too
            if (isVisible()) {
                m_sway->place(windowTitle(), toX11Pixels(frame->topLeft()));
            }
        } else {
            setGeometry(*frame);
        }
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
    } else if (event->type() == QEvent::LayoutRequest) {
        fit();
    } else if (event->type() == QEvent::Resize || event->type() == QEvent::Move) {
        m_restoreFrame.schedule();
    }
    return QWidget::event(event);
}

void X11MenuWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_content->palette().window());
    const double corner = m_isRound ? 12 : 0;
    painter.drawRoundedRect(QRectF(rect()), corner, corner);
}

void X11MenuWindow::showEvent(QShowEvent* /*event*/) {
    fit(); // the content has updated its size hint by now
    if (m_sway) {
        m_sway->requestAreas();
    }
    m_outside.setActive(true);
    m_desktop.show();
}

void X11MenuWindow::hideEvent(QHideEvent* event) {
    m_dismissal.stop();
    if (m_sway) {
        m_sway->stop();
    }
    if (!event->spontaneous()) {
        m_outside.setActive(false);
        m_desktop.hide();
        m_dismissals.notify();
        // Queued, because this may run inside an event of the native window.
        QMetaObject::invokeMethod(this, &X11MenuWindow::destroyNativeWindow, Qt::QueuedConnection);
    }
}

void X11MenuWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        dismiss();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace brimlet
