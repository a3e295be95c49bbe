#pragma once

#include <QPoint>
#include <QPointer>
#include <QWidget>

namespace brimlet {

/// Sends enter and leave events to the widget under the pointer. Qt itself sends them only while
/// the program is active, which it seldom is; then a widget may get the same event from both.
class HoverForwarder final {
public:
    /// `content` must outlive this object.
    explicit HoverForwarder(QWidget& content)
        : m_content(content) {}

    /// Enters the widget at a position in the content's coordinates, after leaving the one entered
    /// before. Does nothing when they are the same.
    void enter(QPoint where);
    /// Leaves the entered widget, if any.
    void leave();

private:
    QWidget& m_content;
    QPointer<QWidget> m_entered;
};

} // namespace brimlet
