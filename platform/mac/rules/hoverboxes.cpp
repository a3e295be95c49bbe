#include "platform/mac/rules/hoverboxes.h"

#include <algorithm>

namespace brimlet {

std::vector<QRect> hoverBoxes(const QRegion& region) {
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

} // namespace brimlet
