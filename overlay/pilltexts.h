#pragma once

#include "host/assignment.h"

namespace brimlet {

/// What a clickable pill's tooltip says: the host its link leads to, as it is written in addresses,
/// so that a look-alike shows for what it is; the brand's name on one line where the link has none.
[[nodiscard]] QString toolTipOf(const SlotCreative& creative);

/// What a screen reader says of a pill: brand and tagline, once where they are the same; of a pill
/// with a picture alone where it leads to.
[[nodiscard]] QString spokenTextOf(const SlotCreative& creative);

/// The text on one line of a length that suits a tooltip, with an ellipsis where it was cut.
[[nodiscard]] QString shortToolTip(const QString& text);

/// The same so that a tooltip of Qt's shows it as written.
[[nodiscard]] QString asPlainToolTip(const QString& text);

} // namespace brimlet
