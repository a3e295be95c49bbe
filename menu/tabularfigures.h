#pragma once

#include <QFont>
#include <QList>

namespace brimlet {

/// Asks the font for figures of equal width. Does nothing before Qt 6.7; then `tabularFigures`
/// gives them.
void preferTabularFigures(QFont& font);

/// The glyphs of the digits 0 to 9 that the font's primary typeface has for tables; empty if it has
/// none, or if its usual digits are of equal width anyway.
[[nodiscard]] QList<quint32> tabularFigures(const QFont& font);

} // namespace brimlet
