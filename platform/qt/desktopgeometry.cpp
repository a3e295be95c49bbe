#include "platform/qt/desktopgeometry.h"

namespace brimlet {

Rect fromQt(const QRectF& rect, const QRectF& primary) {
    return {rect.x() - primary.x(), primary.y() + primary.height() - (rect.y() + rect.height()),
            rect.width(), rect.height()};
}

QRectF toQt(const Rect& rect, const QRectF& primary) {
    return {primary.x() + rect.x, primary.y() + primary.height() - rect.maxY(), rect.width,
            rect.height};
}

} // namespace brimlet
