#pragma once

#include <QIcon>

namespace brimlet {

/// The status item's icon, the front of a laptop, as a template: the menu bar uses only its shape
/// and colours it. It has the sizes of menu bars at scale 1 and 2.
[[nodiscard]] QIcon templateSymbol();

} // namespace brimlet
