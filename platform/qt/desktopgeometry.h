#pragma once

#include "platform/rect.h"

#include <QRectF>

namespace brimlet {

// Conversions between Qt's space (logical pixels, arbitrary origin, y down) and the ports' global
// points (origin at the bottom left of the primary screen, y up). `primary` is the primary screen's
// geometry in Qt's space.

[[nodiscard]] Rect fromQt(const QRectF& rect, const QRectF& primary);
[[nodiscard]] QRectF toQt(const Rect& rect, const QRectF& primary);

/// The smallest rectangle around this one with its edges on whole points and the same horizontal
/// centre, which is on a whole or a half point, as any screen's is. The upper edge is on a whole
/// point already.
[[nodiscard]] Rect inWholePoints(const Rect& rect);

} // namespace brimlet
