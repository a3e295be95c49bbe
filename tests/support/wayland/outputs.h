#pragma once

#include <QImage>
#include <QRect>

namespace brimlet::desktop {

// The outputs of a private Wayland desktop in sway or KWin, numbered from 0. Each call returns when
// the compositor has handled it.

/// False in KWin 6 without a GPU, which composes with QPainter there and offers pictures with
/// OpenGL only.
[[nodiscard]] bool canTakePictures();
/// What is on the screen in an area of points, in pixels of the area's output. Empty when no
/// output shows it.
[[nodiscard]] QImage picture(const QRect& area, bool withPointer = false);

void setOn(int output, bool isOn);
void setScale(int output, double scale);
/// Clockwise by 90 degrees, or back.
void setRotated(int output, bool isRotated);

} // namespace brimlet::desktop
