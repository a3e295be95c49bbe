#pragma once

#include <QPoint>
#include <QRect>

#include <optional>

namespace brimlet {

/// Where the panel's upper left corner goes, all in Qt's space: beside the status item, below it
/// in the upper half of the screen and above it in the lower; in the upper right corner when the
/// item's place is unknown. It stays inside the part of the screen that bars leave free.
[[nodiscard]] QPoint menuOrigin(QSize panel, const std::optional<QRect>& item,
                                const QRect& available);

} // namespace brimlet
