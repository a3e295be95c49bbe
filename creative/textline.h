#pragma once

#include <QFont>
#include <QImage>
#include <QTextLayout>

namespace brimlet {

/// A text laid out once on one line at its natural width, whatever its script, never as markup.
class TextLine final {
public:
    /// Of a text longer than `singleLine` allows, what that leaves.
    TextLine(const QString& text, const QFont& font);

    /// Natural width in points.
    [[nodiscard]] double width() const { return m_width; }

    /// The part of the line that begins `from` pixels from its left end, as a picture of this size
    /// on this ground; upright centred. All in pixels, of which a point has `devicePixelRatio`.
    [[nodiscard]] QImage picture(const QColor& color, const QColor& ground, double devicePixelRatio,
                                 int from, QSize size) const;

private:
    QTextLayout m_layout;
    double m_left = 0; ///< Where the layout put the line's left end.
    double m_width = 0;
    double m_ascent = 0;
    double m_height = 0;
};

} // namespace brimlet
