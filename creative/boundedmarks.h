#pragma once

#include <QString>

namespace brimlet {

/// The text with no more than 30 combining marks in a row, as Unicode has it for safe streams. What
/// is left out would pile up far beyond any line, and laying it out costs the square of its length.
[[nodiscard]] QString withBoundedMarks(const QString& text);

} // namespace brimlet
