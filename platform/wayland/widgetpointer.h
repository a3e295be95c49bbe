#pragma once

#include <QEvent>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QString>
#include <QWidget>

namespace brimlet {

/// Gives a widget's children the mouse events of a pointer that Qt does not know of. The left
/// button alone has a meaning; the pressed child also gets the release, wherever that is. Main
/// thread only.
class WidgetPointer final : public QObject {
    Q_OBJECT

public:
    /// The content outlives it.
    explicit WidgetPointer(QWidget& content);

    // Positions are in points of the content.
    void moveTo(QPointF position);
    void leave();
    void press();
    void release();

    /// The cursor and the tooltip of the child below the pointer; an arrow and empty without one.
    [[nodiscard]] Qt::CursorShape cursor() const;
    [[nodiscard]] QString toolTip() const;
    /// The child's frame in the content; empty without one.
    [[nodiscard]] QRect targetBox() const;

Q_SIGNALS:
    /// The pointer is over another child, or none, or that child has another cursor or tooltip.
    void targetChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setHovered(QWidget* child);
    void send(QWidget& child, QEvent::Type type);

    QWidget& m_content;
    QPointF m_position;
    QPointer<QWidget> m_hovered;
    QPointer<QWidget> m_pressed;
};

} // namespace brimlet
