#include "platform/mac/rules/macstatusitem.h"

#include "platform/mac/rules/templatesymbol.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"

#include <utility>

namespace brimlet {

MacStatusItem::MacStatusItem()
    : m_icon(templateSymbol()) {
    QObject::connect(&m_icon, &QSystemTrayIcon::activated, &m_icon,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         // A double click follows a click that has been reported already.
                         if (reason != QSystemTrayIcon::DoubleClick) {
                             for (const auto& observer : m_observers) {
                                 observer(place());
                             }
                         }
                     });
    m_icon.show();
}

std::optional<Rect> MacStatusItem::place() const {
    const QRect geometry = m_icon.geometry();
    if (geometry.isEmpty()) {
        return std::nullopt;
    }
    return fromQt(QRectF(geometry), primaryGeometry());
}

ObserverToken MacStatusItem::observePresses(std::function<void(std::optional<Rect>)> pressed) {
    m_observers.push_back(std::move(pressed));
    return ObserverToken{m_observers.size()};
}

} // namespace brimlet
