#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <vector>

namespace brimlet {

/// A screen on which the panel may open, in Qt's space.
struct MenuScreen final {
    QRect geometry;
    QRect available;         ///< Without the areas reserved by desktop bars.
    bool isMirrored = false; ///< Bars have their tray at the left end.
};

/// Whether the point, in Qt's space, is on a screen where a bar has reserved the area.
[[nodiscard]] bool isOnBar(QPoint point, const std::vector<MenuScreen>& screens);

/// Where the status item was clicked, in Qt's space: the pointer's position, or the one that the
/// tray reported, whichever is on a bar. If neither is, the item may be on a bar that reserves
/// nothing: the pointer's position, which is absent under Wayland.
[[nodiscard]] std::optional<QPoint> clickOnItem(const std::optional<QPoint>& pointer,
                                                const std::optional<QPoint>& reported,
                                                const std::vector<MenuScreen>& screens);

/// The panel's top-left corner, in Qt's space: below the status item in the upper half of the
/// available area, above it in the lower half. When the item's place is unknown, it is the corner
/// where trays usually are: at the right end of a bar at the top, or else at the bottom; at the
/// lower end of a bar at a side; at the top right without a bar; left for right on a mirrored
/// screen. The panel stays inside the available area and, if it fits, six points away from its
/// edges.
[[nodiscard]] QPoint menuOrigin(QSize panel, const std::optional<QRect>& item,
                                const MenuScreen& screen);

/// The frame of a panel of the preferred size, in Qt's space. It is on the screen that contains the
/// item's centre, otherwise on the first screen, and six points away from the edges of the
/// available area there, with a smaller size if need be.
/// Absent without a screen.
[[nodiscard]] std::optional<QRect> menuFrame(QSize preferred, const std::optional<QRect>& item,
                                             const std::vector<MenuScreen>& screens);

/// The panel's frame with margins, as far as the available area of its screen has room for them.
[[nodiscard]] QRect withMargins(const QRect& panel, const QMargins& margins,
                                const std::vector<MenuScreen>& screens);

} // namespace brimlet
