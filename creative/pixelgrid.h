#pragma once

#include <QRect>
#include <QtMath>

namespace brimlet {

/// Whole pixels, with each edge at the nearest one.
[[nodiscard]] inline QRect snapped(const QRectF& box) {
    const QPoint topLeft(qRound(box.left()), qRound(box.top()));
    return {topLeft, QSize(qRound(box.right()) - topLeft.x(), qRound(box.bottom()) - topLeft.y())};
}

} // namespace brimlet
