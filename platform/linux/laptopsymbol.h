#pragma once

#include <QIcon>

namespace brimlet {

/// The status item's picture: a laptop seen from the front, its notch included. A tray that knows
/// the installed icons gets the symbolic one by name and colours it itself; any other gets it in
/// white with a dark edge, which can be seen on light bars and on dark ones.
[[nodiscard]] QIcon laptopSymbol();

} // namespace brimlet
