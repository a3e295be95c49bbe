#pragma once

#include <QFont>

namespace brimlet {

/// The desktop's font. `size` is in Qt's logical pixels (this program's points), not typographic
/// points.
[[nodiscard]] QFont systemFont(int size, QFont::Weight weight);

/// The overlay's three fonts, from the system font; each is made on first use.
class NotchFont final {
public:
    /// The line of text in a pill: 12, semibold.
    [[nodiscard]] static const QFont& pill();
    /// Secondary lines: 11, regular.
    [[nodiscard]] static const QFont& tagline();
    /// The character in place of a missing picture: 11, semibold.
    [[nodiscard]] static const QFont& fallbackMark();

    NotchFont() = delete;
};

} // namespace brimlet
