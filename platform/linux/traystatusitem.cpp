#include "platform/linux/traystatusitem.h"

#include "platform/linux/laptopsymbol.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace brimlet {
namespace {

/// The place of a click, taken from the pointer. Absent under Wayland, where the pointer's position
/// is known only over the program's own windows.
std::optional<Rect> pointerPlace() {
    if (qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
        return std::nullopt;
    }
    return fromQt(QRectF(QCursor::pos(), QSizeF(1, 1)), primaryGeometry());
}

/// The widget with which Qt draws the icon in an XEmbed tray; null with a StatusNotifier tray.
/// Needed because Qt reports a place, the screen's top left corner, even before a tray has taken
/// the icon.
QWidget* iconWidget() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QSystemTrayIconSys")) {
            return widget;
        }
    }
    return nullptr;
}

} // namespace

TrayStatusItem::TrayStatusItem() {
    connect(&m_watch, &TrayWatch::found, this, &TrayStatusItem::showIcon);
}

void TrayStatusItem::showIcon() {
    m_icon = std::make_unique<QSystemTrayIcon>(laptopSymbol());
    m_icon->setToolTip(m_toolTip);
    connect(m_icon.get(), &QSystemTrayIcon::activated, this, &TrayStatusItem::pressed);
    m_icon->show();
    if (QWidget* const widget = iconWidget()) {
        widget->installEventFilter(this);
    }
}

std::optional<Rect> TrayStatusItem::place() const {
    const QWidget* const widget = m_icon ? iconWidget() : nullptr;
    const QWindow* const window = widget == nullptr ? nullptr : widget->windowHandle();
    // Only the tray shows the window.
    if (window == nullptr || !window->isExposed()) {
        return std::nullopt;
    }
    return fromQt(QRectF(m_icon->geometry()), primaryGeometry());
}

bool TrayStatusItem::eventFilter(QObject* watched, QEvent* event) {
    // It is painted when the tray has taken it.
    if (event->type() == QEvent::Paint || event->type() == QEvent::Move ||
        event->type() == QEvent::Resize) {
        m_placeObservers.notify();
    }
    return QObject::eventFilter(watched, event);
}

void TrayStatusItem::setToolTip(const QString& text) {
    m_toolTip = text;
    if (m_icon) {
        m_icon->setToolTip(text);
    }
}

ObserverToken TrayStatusItem::observePresses(std::function<void(std::optional<Rect>)> pressed) {
    m_observers.push_back(std::move(pressed));
    return ObserverToken{m_observers.size()};
}

void TrayStatusItem::pressed(QSystemTrayIcon::ActivationReason reason) {
    // A double click follows a click that has been reported already.
    if (reason == QSystemTrayIcon::DoubleClick) {
        return;
    }
    const std::optional<Rect> where = place() ? place() : pointerPlace();
    for (const auto& observer : m_observers) {
        observer(where);
    }
}

} // namespace brimlet
