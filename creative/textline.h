#pragma once

#include <QFont>
#include <QImage>
#include <QTextLayout>

namespace brimlet {

/// A plain text of any script, laid out once on one line at its natural width.
class TextLine final {
public:
    /// Shows what `singleLine` makes of the text.
    TextLine(const QString& text, const QFont& font);

    /// Natural width in points.
    [[nodiscard]] double width() const { return m_width; }

    /// A picture of the part that begins `from` pixels from the line's left end, vertically
    /// centred. `size` is in pixels as well; `devicePixelRatio` is pixels per point.
    [[nodiscard]] QImage picture(const QColor& color, const QColor& background,
                                 double devicePixelRatio, int from, QSize size) const;

private:
    QTextLayout m_layout;
    // Points, in the layout's coordinates.
    double m_left = 0;
    double m_width = 0;
    double m_ascent = 0;
    double m_height = 0;
};

} // namespace brimlet
