#pragma once

#include "platform/mac/rules/hoverforwarder.h"

#include <QPointF>
#include <QRect>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// Tracks which of a list of boxes the pointer is in, and sends enter and leave events to the
/// widget at that box's centre.
class HoverTracker final {
public:
    /// `content` must outlive this object; all positions are in its coordinates. `changed` is
    /// called when the pointer has entered or left a box.
    HoverTracker(QWidget& content, std::function<void(bool isInside)> changed);

    /// Returns whether the boxes differ from those before. If so, the pointer counts as outside
    /// until the next `enter` or `pointerAt`.
    bool setBoxes(const std::vector<QRect>& boxes);

    /// The pointer entered the box with that index. Ignored when there is no such box.
    void enter(std::size_t box);
    /// The pointer left the box with that index. Ignored unless it was in that box.
    void leave(std::size_t box);

    /// The pointer's current position; absent while the window is hidden or ignores the mouse.
    void pointerAt(const std::optional<QPointF>& where);

private:
    void leave();

    HoverForwarder m_forwarder;
    std::function<void(bool)> m_changed;
    std::vector<QRect> m_boxes;
    std::optional<std::size_t> m_box; ///< The index of the box that the pointer is in.
};

} // namespace brimlet
