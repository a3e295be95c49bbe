#pragma once

#include <QIcon>

namespace brimlet {

/// The status item's picture, a laptop seen from the front, as a mask: only its shape counts, and
/// the menu bar colours it. In the sizes that fit menu bars at scale 1 and 2.
[[nodiscard]] QIcon templateSymbol();

} // namespace brimlet
