#pragma once

#include <QRect>
#include <QRegion>

#include <vector>

namespace brimlet {

/// Splits a region into parts separated by vertical gaps and returns the bounding box of each, from
/// left to right. Areas whose horizontal extents touch or overlap belong to the same part.
[[nodiscard]] std::vector<QRect> hoverBoxes(const QRegion& region);

} // namespace brimlet
