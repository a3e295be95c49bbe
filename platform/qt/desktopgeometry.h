#pragma once

#include "platform/rect.h"

#include <QRectF>

namespace brimlet {

// Between Qt's space (logical pixels, origin anywhere, y down) and the ports' space (points, origin
// at the bottom left of the primary screen, y up). `primary` is the primary screen in Qt's space.

[[nodiscard]] Rect fromQt(const QRectF& rect, const QRectF& primary);
[[nodiscard]] QRectF toQt(const Rect& rect, const QRectF& primary);

} // namespace brimlet
