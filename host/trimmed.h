#pragma once

#include <QString>

namespace brimlet {

/// The text without white space and line breaks at both ends. Besides what Qt counts as white space
/// these are zero-width spaces (U+200B), which are often pasted unseen.
[[nodiscard]] QString trimmed(const QString& text);

} // namespace brimlet
