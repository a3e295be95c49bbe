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

/// The result of wrapping the start of a text, and the state for continuing.
struct WrappedText final {
    std::vector<TextSpan> lines;
    qsizetype next = 0;         ///< Start of the next line, in UTF-16 units from the beginning.
    bool isInParagraph = false; ///< Whether the next line continues the last line's paragraph.
    bool isRightToLeft = false; ///< The direction of that paragraph.

    /// Whether all of `text` is wrapped.
    [[nodiscard]] bool isWhole(const QString& text) const { return next > text.size(); }
};

/// The line spacing in points, rounded up.
[[nodiscard]] int lineHeight(const QFont& font);

/// An untrusted text prepared for `wrapText`: breaks of all kinds become line feeds, other control
/// characters blanks.
[[nodiscard]] QString wrappableText(const QString& text);

/// Continues wrapping `text`, a result of `wrappableText`, to a width in points, until there are at
/// least `wanted` lines in all or the text ends. Stops earlier, with at least 20 new lines, after
/// 32,768 UTF-16 units, unless `wanted` is the default. Lines break between words, and inside a
/// word that is wider than a line. The cost depends on the new lines only, not on the length of the
/// text or its paragraphs. A paragraph's direction is that of its first 2,048 UTF-16 units.
void wrapText(WrappedText& wrapped, const QString& text, const QFont& font, int width,
              std::size_t wanted = std::numeric_limits<std::size_t>::max());

/// Wraps a whole text of two to six lines and at most 1,000 UTF-16 units anew if one of them is
/// shorter than a third of the longest and other breaks between words avoid that without another
/// line: at punctuation marks if possible. `width` is what it was wrapped to, in points. Other
/// texts stay as they are.
void balanceLines(WrappedText& wrapped, const QString& text, const QFont& font, int width);

} // namespace brimlet
