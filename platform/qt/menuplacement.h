#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <vector>

namespace brimlet {

/// A screen as the panel sees it, in Qt's space.
struct MenuScreen final {
    QRect geometry;
    QRect available; ///< What bars leave free.
};

/// Where the panel's upper left corner goes, all in Qt's space: beside the status item, below it
/// in the upper half of the screen and above it in the lower; in the upper right corner when the
/// item's place is unknown. It stays inside the part of the screen that bars leave free.
[[nodiscard]] QPoint menuOrigin(QSize panel, const std::optional<QRect>& item,
                                const QRect& available);

/// Where the panel goes that would like to be as large as `wish`: on the screen that the item's
/// middle is on, else on the first, and never larger than the free part there. Absent without a
/// screen.
[[nodiscard]] std::optional<QRect> menuFrame(QSize wish, const std::optional<QRect>& item,
                                             const std::vector<MenuScreen>& screens);

} // namespace brimlet
