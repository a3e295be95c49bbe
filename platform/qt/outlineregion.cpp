#include "platform/qt/outlineregion.h"

#include <QPainterPath>
#include <QTransform>

namespace brimlet {

QRegion pixelsInside(const QPainterPath& outline, double devicePixelRatio) {
    QRegion pixels;
    for (const QPolygonF& part :
         outline.toFillPolygons(QTransform::fromScale(devicePixelRatio, devicePixelRatio))) {
        pixels += QRegion(part.toPolygon());
    }
    return pixels;
}

} // namespace brimlet
