#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <vector>

namespace brimlet {

/// A screen on which the panel may open, in Qt's space.
struct MenuScreen final {
    QRect geometry;
    QRect available; ///< Without the areas reserved by desktop bars.
};

/// The panel's top-left corner, in Qt's space: below the status item in the upper half of the
/// available area, above it in the lower half, and in the top-right corner when the item's place is
/// unknown. The panel stays inside the available area.
[[nodiscard]] QPoint menuOrigin(QSize panel, const std::optional<QRect>& item,
                                const QRect& available);

/// The frame of a panel of the preferred size, in Qt's space. It is on the screen that contains the
/// item's centre, otherwise on the first screen, and never larger than the available area there.
/// Absent without a screen.
[[nodiscard]] std::optional<QRect> menuFrame(QSize preferred, const std::optional<QRect>& item,
                                             const std::vector<MenuScreen>& screens);

} // namespace brimlet
