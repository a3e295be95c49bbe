#pragma once

#include "host/assignment.h"

namespace brimlet {

/// The text of a clickable pill's tooltip: the link's host in the encoded form, so that a
/// look-alike host is recognisable; the brand's name on one line if the link has no host.
[[nodiscard]] QString toolTipOf(const SlotCreative& creative);

/// A pill's accessible name: brand and tagline, only once where they are equal; for a pill without
/// text the same as its tooltip.
[[nodiscard]] QString spokenTextOf(const SlotCreative& creative);

/// The text on one line of at most 120 UTF-16 units, followed by an ellipsis if it was cut.
[[nodiscard]] QString shortToolTip(const QString& text);

/// The same as markup, so that a tooltip of Qt shows exactly this text; empty for an empty text.
[[nodiscard]] QString asPlainToolTip(const QString& text);

} // namespace brimlet
