#pragma once

#include <QPoint>
#include <QPointer>
#include <QWidget>

namespace brimlet {

/// Tells the widget under the pointer that it is there and when it is gone. Qt does so itself only
/// while the program is active, which it seldom is; a widget may hear the same from both.
class HoverForwarder final {
public:
    /// The content outlives this.
    explicit HoverForwarder(QWidget& content)
        : m_content(content) {}

    /// `where` is in the content's coordinates. Does nothing when the widget there is the one
    /// entered before, else that is left first.
    void enter(QPoint where);
    /// Does nothing when none is entered.
    void leave();

    [[nodiscard]] bool isInside() const { return m_entered != nullptr; }

private:
    QWidget& m_content;
    QPointer<QWidget> m_entered;
};

} // namespace brimlet
