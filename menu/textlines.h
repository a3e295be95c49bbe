#pragma once

#include <QFont>
#include <QString>

#include <limits>
#include <vector>

namespace brimlet {

/// One line of a wrapped text.
struct TextSpan final {
    qsizetype start = 0; ///< UTF-16 units from the text's beginning.
    qsizetype length = 0;
    bool isRightToLeft = false; ///< The direction of the paragraph that it belongs to.

    bool operator==(const TextSpan&) const = default;
};

/// A text that has been wrapped up to a point, from which it can go on.
struct WrappedText final {
    std::vector<TextSpan> lines;
    qsizetype next = 0;         ///< Where the first line that is missing begins.
    bool isInParagraph = false; ///< Whether that line goes on with the paragraph of the last one.
    bool isRightToLeft = false; ///< The direction of that paragraph.

    [[nodiscard]] bool isWhole(const QString& text) const { return next > text.size(); }
};

/// How high a line of text is, in whole points.
[[nodiscard]] int lineHeight(const QFont& font);

/// A text of strangers as it can be laid out: breaks of all kinds as line feeds, other control
/// characters as blanks.
[[nodiscard]] QString wrappableText(const QString& text);

/// Goes on wrapping a text that is to be `width` points wide until there are `enough` lines or
/// more, or the text ends; unless all of it is wanted, a few lines more will do after very many
/// characters. Lines break between words, and inside a word that is wider than a line. `text` is
/// one that `wrappableText` made. The cost is that of the new lines, however long the text and its
/// paragraphs are; a paragraph's direction is told by its first two thousand characters.
void wrapText(WrappedText& wrapped, const QString& text, const QFont& font, int width,
              std::size_t enough = std::numeric_limits<std::size_t>::max());

} // namespace brimlet
