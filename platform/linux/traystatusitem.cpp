#include "platform/linux/traystatusitem.h"

#include "platform/linux/laptopsymbol.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"

#include <QCursor>

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

} // namespace

TrayStatusItem::TrayStatusItem() {
    connect(&m_watch, &TrayWatch::found, this, &TrayStatusItem::showIcon);
}

void TrayStatusItem::showIcon() {
    m_icon = std::make_unique<QSystemTrayIcon>(laptopSymbol());
    m_icon->setToolTip(m_toolTip);
    connect(m_icon.get(), &QSystemTrayIcon::activated, this, &TrayStatusItem::pressed);
    m_icon->show();
}

std::optional<Rect> TrayStatusItem::place() const {
    const QRect geometry = m_icon ? m_icon->geometry() : QRect();
    if (geometry.isEmpty()) {
        return std::nullopt;
    }
    return fromQt(QRectF(geometry), primaryGeometry());
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
