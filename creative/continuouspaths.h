#pragma once

#include <QPainterPath>

namespace brimlet {

// Outlines with continuous corners: where a straight edge ends the curve begins without a jump in
// its bend, unlike that of a quarter circle.

/// The outline of a capsule as wide and high as the box.
[[nodiscard]] QPainterPath capsulePath(const QRectF& box);

/// The outline of a box whose corners touch the circles of this radius. A radius beyond what fits
/// gives corners that meet in the middle of the shorter sides.
[[nodiscard]] QPainterPath roundedPath(const QRectF& box, double radius);

} // namespace brimlet
