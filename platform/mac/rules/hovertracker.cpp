#include "platform/mac/rules/hovertracker.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace brimlet {

HoverTracker::HoverTracker(QWidget& content, std::function<void(bool isInside)> changed)
    : m_forwarder(content)
    , m_changed(std::move(changed)) {}

bool HoverTracker::setBoxes(const std::vector<QRect>& boxes) {
    if (boxes == m_boxes) {
        return false;
    }
    leave();
    m_boxes = boxes;
    return true;
}

void HoverTracker::enter(std::size_t box) {
    if (box >= m_boxes.size()) {
        return;
    }
    // Also when the box is the same: there may be another widget in it by now.
    m_forwarder.enter(m_boxes[box].center());
    if (std::exchange(m_box, box) != box) {
        m_changed(true);
    }
}

void HoverTracker::leave(std::size_t box) {
    if (m_box == box) {
        leave();
    }
}

void HoverTracker::pointerAt(const std::optional<QPointF>& where) {
    // The far edges are outside, because AppKit sends no exit event for a pointer there.
    const auto box = std::find_if(m_boxes.begin(), m_boxes.end(), [&](const QRect& each) {
        return where && each.contains(static_cast<int>(std::floor(where->x())),
                                      static_cast<int>(std::floor(where->y())));
    });
    if (box == m_boxes.end()) {
        leave();
    } else {
        enter(static_cast<std::size_t>(box - m_boxes.begin()));
    }
}

void HoverTracker::leave() {
    if (std::exchange(m_box, std::nullopt)) {
        m_forwarder.leave();
        m_changed(false);
    }
}

} // namespace brimlet
