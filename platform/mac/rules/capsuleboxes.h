#pragma once

#include "platform/rect.h"

#include <QPointF>
#include <QRect>
#include <QRegion>

#include <vector>

namespace brimlet {

/// Splits a region into parts separated by vertical gaps and returns the bounding box of each, from
/// left to right. Areas whose horizontal extents touch or overlap belong to the same part.
[[nodiscard]] std::vector<QRect> capsuleBoxes(const QRegion& region);

/// A box in the content's coordinates (points, y down) in global points (y up), where `frame` is
/// the content's frame.
[[nodiscard]] Rect boxInGlobal(const QRect& box, const Rect& frame);

/// A position in global points in the coordinates of the content with that frame.
[[nodiscard]] QPointF pointInContent(QPointF global, const Rect& frame);

} // namespace brimlet
