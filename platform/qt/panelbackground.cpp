#include "platform/qt/panelbackground.h"

#include <QImage>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <array>
#include <cmath>

namespace brimlet {
namespace {

// Points.
constexpr int kReach = 18; ///< From the panel's edge to where the shadow ends.
constexpr int kBelow = 8;  ///< How far the shadow is below the panel.
constexpr int kCorner = static_cast<int>(kPanelCorner);
constexpr int kEnd = kReach + kCorner; ///< The size of a corner of the shadow.
static_assert(kPanelShadow == QMargins(kReach, kReach - kBelow, kReach, kReach + kBelow));

/// The shadow of a panel of the smallest size, with one pixel a point, which is enough for what is
/// blurred: four corners around a single row and a single column.
QImage smallestShadow() {
    constexpr double kDarkest = 0.45;
    QImage shadow(2 * kEnd + 1, 2 * kEnd + 1, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < shadow.height(); ++y) {
        for (int x = 0; x < shadow.width(); ++x) {
            const double outside = std::hypot(x - kEnd, y - kEnd) - kCorner;
            const double rest = std::clamp(1 - outside / kReach, 0.0, 1.0);
            shadow.setPixelColor(x, y, QColor::fromRgbF(0, 0, 0, float(kDarkest * rest * rest)));
        }
    }
    return shadow;
}

} // namespace

void paintPanel(QPainter& painter, const QRectF& panel, const QPalette& palette, double corner,
                RoundedPath roundedPath) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(roundedPath(panel, corner), palette.window());
    constexpr double kHalf = 0.5; // of the hairline
    painter.strokePath(
        roundedPath(panel.adjusted(kHalf, kHalf, -kHalf, -kHalf), std::max(0.0, corner - kHalf)),
        QPen(palette.mid(), 2 * kHalf, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
}

void paintPanelShadow(QPainter& painter, const QRectF& panel) {
    static const QImage shadow = smallestShadow();
    constexpr double end = kEnd;
    const QRectF box = panel.translated(0, kBelow).adjusted(-kReach, -kReach, kReach, kReach);
    // The boundaries of three columns and rows, on the screen and in the picture.
    const std::array<double, 4> x{box.left(), box.left() + end, box.right() - end, box.right()};
    const std::array<double, 4> y{box.top(), box.top() + end, box.bottom() - end, box.bottom()};
    const std::array<double, 4> from{0, end, end + 1, 2 * end + 1};
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            painter.drawImage(
                QRectF(QPointF(x[column], y[row]), QPointF(x[column + 1], y[row + 1])), shadow,
                QRectF(QPointF(from[column], from[row]), QPointF(from[column + 1], from[row + 1])));
        }
    }
}

} // namespace brimlet
