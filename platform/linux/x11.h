#pragma once

#include <QRegion>
#include <QtGui/qwindowdefs.h>

namespace brimlet::x11 {

// What Qt does not offer of the X server. On another platform, such as the offscreen one, these do
// nothing and report a compositor.

/// Clicks on the window count only inside the region (logical pixels); elsewhere, and everywhere
/// with an empty region, they reach what is underneath.
void setInputShape(WId window, const QRegion& region, qreal devicePixelRatio);

/// Whether somebody blends transparent windows with what is behind them.
[[nodiscard]] bool hasCompositor();

} // namespace brimlet::x11
