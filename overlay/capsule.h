#pragma once

#include <QColor>
#include <QImage>

namespace brimlet {

/// Black at opacity 0.96.
inline constexpr QColor kCapsuleGround = QColor(0, 0, 0, 245);

/// A capsule's ground with its rim, transparent around it. The size is in pixels of the screen, of
/// which a point has `devicePixelRatio`.
[[nodiscard]] QImage capsulePicture(QSize size, double devicePixelRatio);

} // namespace brimlet
