#pragma once

#include <QString>

namespace brimlet {

/// The text in place of a missing picture: the first grapheme cluster of the trimmed brand (a flag,
/// a letter with a combining accent), case unchanged; a middle dot for a brand of blanks only. At
/// most 1,024 UTF-16 units.
[[nodiscard]] QString fallbackText(const QString& brand);

} // namespace brimlet
