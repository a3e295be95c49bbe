#pragma once

#include <QPoint>

#include <optional>

namespace brimlet {

/// Records where StatusNotifier hosts say that the item was clicked, which Qt does not pass on.
/// Repeated calls do nothing. Main thread only.
void recordNotifierClicks();

/// The position in the latest call of Activate, SecondaryActivate or ContextMenu since the previous
/// call of this; absent if there was none. Hosts give it in their own coordinates, which are not
/// always the screen's.
[[nodiscard]] std::optional<QPoint> takeNotifierClick();

} // namespace brimlet
