#include "platform/linux/traystatusitem.h"

#include "platform/linux/laptopsymbol.h"
#include "platform/linux/notifierclicks.h"
#include "platform/linux/startupnotification.h"
#include "platform/linux/x11menuscreens.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"
#include "platform/qt/menuplacement.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace brimlet {
namespace {

/// The pointer's position in Qt's space. Absent under Wayland, where it is known only over the
/// program's own windows.
std::optional<QPoint> pointerPosition() {
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ? std::nullopt
                                                        : std::optional(QCursor::pos());
}

std::optional<Rect> placeOf(const std::optional<QPoint>& point) {
    return point ? std::optional(fromQt(QRectF(*point, QSizeF(1, 1)), primaryGeometry()))
                 : std::nullopt;
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

void TrayStatusItem::fillMenu() {
    m_menu = std::make_unique<QMenu>();
    const auto add = [this](const QString& text, InstanceRequest request) {
        m_menu->addAction(text, this, [this, request] {
            for (const auto& chosen : m_menuObservers) {
                chosen(request);
            }
            completeStartup(takeStartupId());
        });
    };
    add(tr("Open"), InstanceRequest::Open);
    add(tr("Pause ads 24h"), InstanceRequest::Pause);
    m_menu->addSeparator();
    add(tr("Quit"), InstanceRequest::Quit);
}

void TrayStatusItem::showIcon() {
    m_icon = std::make_unique<QSystemTrayIcon>(laptopSymbol());
    m_icon->setToolTip(m_toolTip);
    fillMenu();
    m_icon->setContextMenu(m_menu.get());
    recordNotifierClicks();
    connect(m_icon.get(), &QSystemTrayIcon::activated, this, &TrayStatusItem::pressed);
    m_icon->show();
    if (QWidget* const widget = iconWidget()) {
        widget->installEventFilter(this);
    }
}

std::optional<Rect> TrayStatusItem::place() const {
    const QWidget* const widget = m_icon ? iconWidget() : nullptr;
    if (widget == nullptr) {
        const bool isKnown = m_lastClick && isOnBar(*m_lastClick, x11MenuScreens());
        return isKnown ? placeOf(m_lastClick) : std::nullopt;
    }
    const QWindow* const window = widget->windowHandle();
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

ObserverToken TrayStatusItem::observeMenu(std::function<void(InstanceRequest)> chosen) {
    m_menuObservers.push_back(std::move(chosen));
    return ObserverToken{m_menuObservers.size()};
}

void TrayStatusItem::pressed(QSystemTrayIcon::ActivationReason reason) {
    const bool isNotifier = iconWidget() == nullptr;
    const bool isMenuOpen = reason == QSystemTrayIcon::Context && !isNotifier;
    // A double click follows a click that has been reported already.
    if (reason == QSystemTrayIcon::DoubleClick || isMenuOpen) {
        return;
    }
    if (isNotifier) {
        m_lastClick = clickOnItem(pointerPosition(), takeNotifierClick(), x11MenuScreens());
    }
    const std::optional<Rect> where = isNotifier ? placeOf(m_lastClick) : place();
    for (const auto& observer : m_observers) {
        observer(where);
    }
    completeStartup(takeStartupId());
}

} // namespace brimlet
