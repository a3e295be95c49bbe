#pragma once

#include "platform/qt/menuplacement.h"

#include <QPoint>
#include <QRect>

#include <vector>

namespace brimlet {

/// The screens of the X server on which the panel may open, the primary one first, with the areas
/// that bars leave free as far as X programs can know: not in sway and other wlroots compositors.
/// `monitorAreas` says what is free of each screen where that is known otherwise, in pixels of the
/// X server.
[[nodiscard]] std::vector<MenuScreen> x11MenuScreens(const std::vector<QRect>& monitorAreas = {});

/// A position in Qt's space in pixels of the X server.
[[nodiscard]] QPoint toX11Pixels(QPoint position);

} // namespace brimlet
