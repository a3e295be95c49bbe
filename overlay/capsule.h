#pragma once

#include <QColor>
#include <QImage>

namespace brimlet {

/// Black at opacity 0.96.
inline constexpr QColor kCapsuleBackground = QColor(0, 0, 0, 245);

/// An empty capsule with its rim, transparent outside. `size` is in pixels; `devicePixelRatio` is
/// pixels per point.
[[nodiscard]] QImage capsulePicture(QSize size, double devicePixelRatio);

} // namespace brimlet
