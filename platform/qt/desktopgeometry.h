#pragma once

#include "platform/rect.h"

#include <QRectF>

namespace brimlet {

// Conversions between Qt's space (logical pixels, arbitrary origin, y down) and the ports' global
// points (origin at the bottom left of the primary screen, y up). `primary` is the primary screen's
// geometry in Qt's space.

[[nodiscard]] Rect fromQt(const QRectF& rect, const QRectF& primary);
[[nodiscard]] QRectF toQt(const Rect& rect, const QRectF& primary);

} // namespace brimlet
