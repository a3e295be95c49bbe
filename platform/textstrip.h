#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

namespace brimlet {

/// A text that is wider than its box on the overlay, at one moment of its scroll.
struct TextStrip final {
    QRect box; ///< Where it was painted last, in the window's pixels.
    /// Of the text with its background; as high as the box, in Format_ARGB32_Premultiplied.
    QImage picture;
    int from = 0; ///< The picture's column at the box's left edge, in pixels.
    /// The picture's, and that of the window around the box.
    QColor background = {};
};

} // namespace brimlet
