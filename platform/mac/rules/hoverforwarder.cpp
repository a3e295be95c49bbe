#include "platform/mac/rules/hoverforwarder.h"

#include <QCoreApplication>
#include <QEnterEvent>

namespace brimlet {

void HoverForwarder::enter(QPoint where) {
    QWidget* const widget = m_content.childAt(where);
    if (widget == m_entered) {
        return;
    }
    leave();
    m_entered = widget;
    // If Qt has sent the widget an enter event already, it gets no second one.
    if (widget != nullptr && !widget->underMouse()) {
        QEnterEvent event(widget->mapFrom(&m_content, where), where, m_content.mapToGlobal(where));
        QCoreApplication::sendEvent(widget, &event);
    }
}

void HoverForwarder::leave() {
    if (m_entered) {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(m_entered, &event);
        m_entered = nullptr;
    }
}

} // namespace brimlet
