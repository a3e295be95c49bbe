#include "platform/mac/rules/capsuleboxes.h"

#include <algorithm>

namespace brimlet {

std::vector<QRect> capsuleBoxes(const QRegion& region) {
    std::vector<QRect> parts(region.begin(), region.end());
    std::sort(parts.begin(), parts.end(),
              [](const QRect& one, const QRect& other) { return one.x() < other.x(); });
    std::vector<QRect> boxes;
    for (const QRect& part : parts) {
        if (boxes.empty() || part.x() > boxes.back().right() + 1) {
            boxes.push_back(part);
        } else {
            boxes.back() |= part;
        }
    }
    return boxes;
}

Rect boxInGlobal(const QRect& box, const Rect& frame) {
    return {frame.x + box.x(), frame.y + frame.height - box.y() - box.height(),
            static_cast<double>(box.width()), static_cast<double>(box.height())};
}

QPointF pointInContent(QPointF global, const Rect& frame) {
    return {global.x() - frame.x, frame.y + frame.height - global.y()};
}

} // namespace brimlet
