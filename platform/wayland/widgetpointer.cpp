#include "platform/wayland/widgetpointer.h"

#include <QCoreApplication>
#include <QMouseEvent>

#include <utility>

namespace brimlet {

WidgetPointer::WidgetPointer(QWidget& content)
    : m_content(content) {}

void WidgetPointer::moveTo(QPointF position) {
    m_position = position;
    setHovered(m_content.childAt(position.toPoint()));
}

void WidgetPointer::leave() {
    setHovered(nullptr);
    m_pressed.clear();
}

void WidgetPointer::press() {
    m_pressed = m_hovered;
    if (m_pressed) {
        send(*m_pressed, QEvent::MouseButtonPress);
    }
}

void WidgetPointer::release() {
    if (QWidget* const pressed = std::exchange(m_pressed, {})) {
        send(*pressed, QEvent::MouseButtonRelease);
    }
}

Qt::CursorShape WidgetPointer::cursor() const {
    return m_hovered ? m_hovered->cursor().shape() : Qt::ArrowCursor;
}

QString WidgetPointer::toolTip() const {
    return m_hovered ? m_hovered->toolTip() : QString();
}

QRect WidgetPointer::targetBox() const {
    return m_hovered ? QRect(m_hovered->mapTo(&m_content, QPoint()), m_hovered->size()) : QRect();
}

void WidgetPointer::setHovered(QWidget* child) {
    if (m_hovered == child) {
        return;
    }
    if (m_hovered) {
        m_hovered->removeEventFilter(this);
        QEvent left(QEvent::Leave);
        QCoreApplication::sendEvent(m_hovered, &left);
    }
    m_hovered = child;
    if (child != nullptr) {
        const QPointF global = m_content.mapToGlobal(m_position);
        QEnterEvent entered(child->mapFrom(&m_content, m_position), m_position, global);
        QCoreApplication::sendEvent(child, &entered);
        child->installEventFilter(this);
    }
    Q_EMIT targetChanged();
}

bool WidgetPointer::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::CursorChange:
    case QEvent::ToolTipChange:
        Q_EMIT targetChanged();
        break;
    case QEvent::Hide:
        setHovered(nullptr);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void WidgetPointer::send(QWidget& child, QEvent::Type type) {
    const bool isPress = type == QEvent::MouseButtonPress;
    QMouseEvent event(type, child.mapFrom(&m_content, m_position), m_position,
                      m_content.mapToGlobal(m_position), Qt::LeftButton,
                      isPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&child, &event);
}

} // namespace brimlet
