#pragma once

#include <QRect>
#include <QRegion>

#include <vector>

namespace brimlet {

/// The boxes around the parts of a region that lie side by side, from left to right. Parts above
/// one another are one part.
[[nodiscard]] std::vector<QRect> hoverBoxes(const QRegion& region);

} // namespace brimlet
