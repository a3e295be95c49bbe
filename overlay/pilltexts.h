#pragma once

#include "host/assignment.h"

namespace brimlet {

/// What a clickable pill's tooltip says: the host its link leads to, as it is written in addresses,
/// so that a look-alike shows for what it is; the brand's name on one line where the link has none.
[[nodiscard]] QString toolTipOf(const SlotCreative& creative);

/// What a screen reader says of a pill: brand and tagline, once where they are the same; of a pill
/// with a picture alone where it leads to.
[[nodiscard]] QString spokenTextOf(const SlotCreative& creative);

/// The text so that a tooltip shows it as written, on one line of bearable length.
[[nodiscard]] QString asPlainToolTip(const QString& text);

} // namespace brimlet
