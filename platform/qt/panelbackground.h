#pragma once

#include <QMargins>
#include <QPainterPath>

class QPainter;
class QPalette;

namespace brimlet {

/// The outline of a box whose corners are round, with a radius in points.
using RoundedPath = QPainterPath (*)(const QRectF& box, double radius);

/// Of the panel's corners, in points.
inline constexpr double kPanelCorner = 20;
/// What the panel's shadow takes around it, in points. Its light comes from above.
inline constexpr QMargins kPanelShadow(18, 10, 18, 26);

/// Fills the panel with the palette's window colour and draws a hairline of its `Mid` colour inside
/// the edge. Corners of radius 0 are square.
void paintPanel(QPainter& painter, const QRectF& panel, const QPalette& palette, double corner,
                RoundedPath roundedPath);

/// Paints the shadow of a panel with corners of `kPanelCorner`, also under the panel.
void paintPanelShadow(QPainter& painter, const QRectF& panel);

} // namespace brimlet
