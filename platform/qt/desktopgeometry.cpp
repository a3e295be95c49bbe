#include "platform/qt/desktopgeometry.h"

#include <cmath>

namespace brimlet {

Rect fromQt(const QRectF& rect, const QRectF& primary) {
    return {rect.x() - primary.x(), primary.y() + primary.height() - (rect.y() + rect.height()),
            rect.width(), rect.height()};
}

QRectF toQt(const Rect& rect, const QRectF& primary) {
    return {primary.x() + rect.x, primary.y() + primary.height() - rect.maxY(), rect.width,
            rect.height};
}

Rect inWholePoints(const Rect& rect) {
    const double left = std::floor(rect.minX());
    const double bottom = std::floor(rect.minY());
    return {left, bottom, std::round(2 * rect.midX()) - 2 * left, std::round(rect.maxY()) - bottom};
}

} // namespace brimlet
