#pragma once

#include <QPainterPath>

namespace brimlet {

/// A box with circular corners, for windows that get their outline from elsewhere.
inline QPainterPath plainCorners(const QRectF& box, double radius) {
    QPainterPath path;
    path.addRoundedRect(box, radius, radius);
    return path;
}

} // namespace brimlet
