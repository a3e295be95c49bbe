#pragma once

#include <QRegion>

class QPainterPath;

namespace brimlet {

/// The pixels inside an outline in points, whose corners are rounded to the nearest pixel.
[[nodiscard]] QRegion pixelsInside(const QPainterPath& outline, double devicePixelRatio);

} // namespace brimlet
