#pragma once

#include <QFont>

namespace brimlet {

/// The desktop's own font in a size of the program's own: points of the desktop's geometry, which
/// are Qt's logical pixels.
[[nodiscard]] QFont systemFont(int size, QFont::Weight weight);

/// The three fonts of the overlay, from the system's own font, each made once.
class NotchFont final {
public:
    /// The line of text in a pill: 12, semibold.
    [[nodiscard]] static const QFont& pill();
    /// Secondary lines: 11, regular.
    [[nodiscard]] static const QFont& tagline();
    /// The letter that stands in for a missing picture: 11, semibold.
    [[nodiscard]] static const QFont& fallbackMark();

    NotchFont() = delete;
};

} // namespace brimlet
