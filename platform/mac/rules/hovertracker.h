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

/// Which of some boxes the pointer is in. The widget in the middle of that box is told.
class HoverTracker final {
public:
    /// The content outlives this; all places are in its coordinates. `changed` is called whenever
    /// the pointer has come into a box or left one.
    HoverTracker(QWidget& content, std::function<void(bool isInside)> changed);

    [[nodiscard]] const std::vector<QRect>& boxes() const { return m_boxes; }
    /// Whether they are others than before; then the pointer counts as outside until it is told of.
    bool setBoxes(const std::vector<QRect>& boxes);

    /// The pointer came into the box of this number, or left it. A box that there is not counts for
    /// nothing, nor does leaving another box than the one that the pointer is in.
    void enter(std::size_t box);
    void leave(std::size_t box);

    /// Where the pointer is; absent while clicks pass through.
    void pointerAt(const std::optional<QPointF>& where);

private:
    void leave();

    HoverForwarder m_forwarder;
    std::function<void(bool)> m_changed;
    std::vector<QRect> m_boxes;
    std::optional<std::size_t> m_box; ///< The one that the pointer is in.
};

} // namespace brimlet
