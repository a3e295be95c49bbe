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

/// How high a line of text is, in whole points.
[[nodiscard]] int lineHeight(const QFont& font);

/// A text of strangers as it can be laid out: breaks of all kinds as line feeds, other control
/// characters as blanks.
[[nodiscard]] QString wrappableText(const QString& text);

/// Where the lines of a text break that is to be `width` points wide: between words, and inside a
/// word that is wider than a line. `text` is one that `wrappableText` made. It may end early, but
/// not before it has `enough` lines. The layout's own memory is bounded, however long the text is.
[[nodiscard]] std::vector<TextSpan>
wrapText(const QString& text, const QFont& font, int width,
         std::size_t enough = std::numeric_limits<std::size_t>::max());

} // namespace brimlet
