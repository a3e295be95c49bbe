#pragma once

#include <QString>

namespace brimlet {

/// The text with no more than 30 combining marks in a row, the limit of Unicode's stream-safe text
/// format (UAX 15). Longer runs overlap other lines, and their layout takes quadratic time.
[[nodiscard]] QString withBoundedMarks(const QString& text);

} // namespace brimlet
