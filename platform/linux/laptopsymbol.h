#pragma once

#include <QIcon>

namespace brimlet {

/// The status item's icon: the front of a laptop with a notch. Where the symbolic icon is
/// installed, the icon has its name, and trays that support icon themes colour it themselves. Other
/// trays get a white picture with a dark edge, which is visible on light and dark bars.
[[nodiscard]] QIcon laptopSymbol();

} // namespace brimlet
