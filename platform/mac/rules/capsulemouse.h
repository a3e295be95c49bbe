#pragma once

#include "platform/mac/rules/mouseforwarder.h"
#include "platform/rect.h"

#include <QPointF>
#include <QRect>
#include <QString>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// The mouse over the clickable boxes of the overlay's content: which box the pointer is in, the
/// events for the widget there, the pointing hand and the tooltip. All positions and frames are in
/// global points, y up.
class CapsuleMouse final {
public:
    /// `content` must outlive this object. `showHand` sets the pointing hand, or the arrow again;
    /// `toolTipAt` returns the tooltip at a position in the content, empty for none.
    CapsuleMouse(QWidget& content, std::function<void(bool isHand)> showHand,
                 std::function<QString(QPoint)> toolTipAt);

    /// The content's frame.
    void setFrame(const Rect& frame) { m_frame = frame; }
    /// Boxes in the content's coordinates, in points. If they differ from those before, the pointer
    /// counts as outside until the next `pointerAt`.
    void setBoxes(const std::vector<QRect>& boxes);
    /// The frame of each box, in their order.
    [[nodiscard]] std::vector<Rect> boxFrames() const;

    /// The pointer's current position; absent while the boxes do not take the mouse. The hand is
    /// set each time inside a box, because the active program may have replaced it.
    void pointerAt(const std::optional<QPointF>& where);

    void press(QPointF where);
    void release(QPointF where);

    /// The tooltip of the box that the pointer is in; empty outside.
    [[nodiscard]] QString toolTip() const;

private:
    [[nodiscard]] std::optional<std::size_t> boxAt(QPointF where) const;
    void leave();

    MouseForwarder m_forwarder;
    std::function<void(bool)> m_showHand;
    std::function<QString(QPoint)> m_toolTipAt;
    Rect m_frame;
    std::vector<QRect> m_boxes;
    std::optional<std::size_t> m_box; ///< The index of the box that the pointer is in.
};

} // namespace brimlet
