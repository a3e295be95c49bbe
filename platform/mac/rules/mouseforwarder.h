#pragma once

#include <QPoint>
#include <QPointer>
#include <QWidget>

namespace brimlet {

/// Sends mouse events to the widgets of a content whose own window ignores the mouse.
class MouseForwarder final {
public:
    /// `content` must outlive this object; all positions are in its coordinates.
    explicit MouseForwarder(QWidget& content)
        : m_content(content) {}

    /// Enters the widget at a position, after leaving the one entered before. Does nothing when
    /// they are the same.
    void enter(QPoint where);
    /// Leaves the entered widget, if any.
    void leave();

    /// Presses the left button on the widget at a position.
    void press(QPointF where);
    /// Releases the left button. The pressed widget, if any, receives the event, also elsewhere.
    void release(QPointF where);

private:
    QWidget& m_content;
    QPointer<QWidget> m_entered;
    QPointer<QWidget> m_pressed;
};

} // namespace brimlet
