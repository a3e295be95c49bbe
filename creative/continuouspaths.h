#pragma once

#include <QPainterPath>

namespace brimlet {

// Outlines with continuous corners: unlike at a quarter circle, the curvature has no jump where a
// straight edge ends.

/// The outline of a capsule as wide and high as the box.
[[nodiscard]] QPainterPath capsulePath(const QRectF& box);

/// The outline of a box with rounded corners; each passes through the middle of the circular arc of
/// this radius. A radius that does not fit is reduced until the corners meet in the middle of the
/// shorter sides.
[[nodiscard]] QPainterPath roundedPath(const QRectF& box, double radius);

} // namespace brimlet
