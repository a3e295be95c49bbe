#pragma once

#include <QImage>

namespace brimlet::WaylandOutputs {

// The outputs of a private Wayland desktop in sway or KWin, by their position in the compositor's
// order. Each call returns when the compositor has handled it.

/// Everything that is on the screens, in pixels.
[[nodiscard]] QImage picture(bool withPointer = false);

void setOn(int output, bool isOn);
void setScale(int output, double scale);
/// Clockwise by 90 degrees, or back.
void setRotated(int output, bool isRotated);

} // namespace brimlet::WaylandOutputs
