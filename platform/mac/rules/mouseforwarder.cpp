#include "platform/mac/rules/mouseforwarder.h"

#include <QCoreApplication>
#include <QEnterEvent>
#include <QMouseEvent>

#include <cmath>
#include <utility>

namespace brimlet {

void MouseForwarder::enter(QPoint where) {
    QWidget* const widget = m_content.childAt(where);
    if (widget == m_entered) {
        return;
    }
    leave();
    m_entered = widget;
    if (widget != nullptr) {
        QEnterEvent event(widget->mapFrom(&m_content, where), where, m_content.mapToGlobal(where));
        QCoreApplication::sendEvent(widget, &event);
    }
}

void MouseForwarder::leave() {
    if (m_entered) {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(m_entered, &event);
        m_entered = nullptr;
    }
}

void MouseForwarder::press(QPointF where) {
    m_pressed = m_content.childAt(static_cast<int>(std::floor(where.x())),
                                  static_cast<int>(std::floor(where.y())));
    if (m_pressed) {
        QMouseEvent event(QEvent::MouseButtonPress, m_pressed->mapFrom(&m_content, where), where,
                          m_content.mapToGlobal(where), Qt::LeftButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(m_pressed, &event);
    }
}

void MouseForwarder::release(QPointF where) {
    if (QWidget* const widget = std::exchange(m_pressed, nullptr)) {
        QMouseEvent event(QEvent::MouseButtonRelease, widget->mapFrom(&m_content, where), where,
                          m_content.mapToGlobal(where), Qt::LeftButton, Qt::NoButton, {});
        QCoreApplication::sendEvent(widget, &event);
    }
}

} // namespace brimlet
