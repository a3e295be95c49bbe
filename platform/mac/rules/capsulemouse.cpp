#include "platform/mac/rules/capsulemouse.h"

#include "platform/mac/rules/capsuleboxes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace brimlet {

CapsuleMouse::CapsuleMouse(QWidget& content, std::function<void(bool isHand)> showHand,
                           std::function<QString(QPoint)> toolTipAt)
    : m_forwarder(content)
    , m_showHand(std::move(showHand))
    , m_toolTipAt(std::move(toolTipAt)) {}

void CapsuleMouse::setBoxes(const std::vector<QRect>& boxes) {
    if (boxes != m_boxes) {
        leave();
        m_boxes = boxes;
    }
}

std::vector<Rect> CapsuleMouse::boxFrames() const {
    std::vector<Rect> frames;
    for (const QRect& box : m_boxes) {
        frames.push_back(boxInGlobal(box, m_frame));
    }
    return frames;
}

void CapsuleMouse::pointerAt(const std::optional<QPointF>& where) {
    const auto box = where ? boxAt(*where) : std::nullopt;
    if (!box) {
        leave();
        return;
    }
    m_box = box;
    // Also when the box is the same: there may be another widget in it by now.
    m_forwarder.enter(m_boxes[*box].center());
    m_showHand(true);
}

void CapsuleMouse::press(QPointF where) {
    m_forwarder.press(pointInContent(where, m_frame));
}

void CapsuleMouse::release(QPointF where) {
    m_forwarder.release(pointInContent(where, m_frame));
}

QString CapsuleMouse::toolTip() const {
    return m_box ? m_toolTipAt(m_boxes[*m_box].center()) : QString();
}

std::optional<std::size_t> CapsuleMouse::boxAt(QPointF where) const {
    const QPointF position = pointInContent(where, m_frame);
    // The far edges are outside, because AppKit sends no exit event for a pointer there.
    const QPoint pixel(static_cast<int>(std::floor(position.x())),
                       static_cast<int>(std::floor(position.y())));
    const auto box = std::find_if(m_boxes.begin(), m_boxes.end(),
                                  [pixel](const QRect& each) { return each.contains(pixel); });
    return box == m_boxes.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(box - m_boxes.begin()));
}

void CapsuleMouse::leave() {
    if (std::exchange(m_box, std::nullopt)) {
        m_forwarder.leave();
        m_showHand(false);
    }
}

} // namespace brimlet
