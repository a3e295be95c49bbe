#pragma once

#include <QString>

namespace brimlet {

/// What stands where a brand's picture is missing: the first character of the trimmed brand as a
/// reader sees it, with all its code points (a flag, a family, an accent written apart), case
/// unchanged; a middle dot for a brand of blanks only.
[[nodiscard]] QString fallbackText(const QString& brand);

} // namespace brimlet
