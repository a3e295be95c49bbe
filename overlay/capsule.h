#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>

namespace brimlet {

/// Black at opacity 0.96.
inline constexpr QColor kCapsuleGround = QColor(0, 0, 0, 245);

/// The outline of a capsule as wide and high as the box. Where the straight edges end the curve
/// begins without a jump in its bend, unlike that of half circles.
[[nodiscard]] QPainterPath capsulePath(const QRectF& box);

/// A capsule's ground with its rim, transparent around it. The size is in pixels of the screen, of
/// which a point has `devicePixelRatio`.
[[nodiscard]] QImage capsulePicture(QSize size, double devicePixelRatio);

} // namespace brimlet
