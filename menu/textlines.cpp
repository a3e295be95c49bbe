#include "menu/textlines.h"

#include <QFontMetricsF>
#include <QTextBoundaryFinder>
#include <QTextLayout>

#include <algorithm>
#include <optional>
#include <utility>

namespace brimlet {
namespace {

/// Laid out at a time, in UTF-16 units; longer than any line.
constexpr qsizetype kPiece = 2048;
/// A call ends after this many UTF-16 units, if it has made the minimum of lines, which is more
/// than the menu shows at a time. Bounds the cost of characters that take hardly any room.
constexpr qsizetype kMaximumPerPass = 32'768;
constexpr std::size_t kMinimumLines = 20;

/// The lines of a piece of a paragraph. If it is not the paragraph's last piece, its last line may
/// be incomplete and is left to the next piece.
std::vector<TextSpan> wrapPiece(const QString& text, TextSpan piece, bool isLast, const QFont& font,
                                int width) {
    QTextLayout layout(text.mid(piece.start, piece.length), font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(piece.isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    layout.setTextOption(option);
    layout.beginLayout();
    std::vector<TextSpan> lines;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines.push_back({piece.start + line.textStart(), line.textLength(), piece.isRightToLeft});
    }
    layout.endLayout();
    if (!isLast && lines.size() > 1) {
        lines.pop_back();
    }
    return lines;
}

QStringView wordsOf(const TextSpan& line, const QString& text) {
    return QStringView(text).mid(line.start, line.length).trimmed();
}

/// In points.
std::vector<double> widthsOf(const WrappedText& wrapped, const QString& text, const QFont& font) {
    const QFontMetricsF metrics(font);
    std::vector<double> widths;
    for (const TextSpan& line : wrapped.lines) {
        widths.push_back(metrics.horizontalAdvance(wordsOf(line, text).toString()));
    }
    return widths;
}

/// Whether no line is shorter than a third of the longest.
bool isEven(const std::vector<double>& widths) {
    const auto [shortest, longest] = std::minmax_element(widths.begin(), widths.end());
    return 3 * *shortest >= *longest;
}

/// Whether a line ends inside a word.
bool breaksWords(const WrappedText& wrapped, const QString& text) {
    QTextBoundaryFinder places(QTextBoundaryFinder::Line, text);
    return std::any_of(wrapped.lines.begin(), wrapped.lines.end(), [&](const TextSpan& line) {
        places.setPosition(line.start);
        return !places.isAtBoundary();
    });
}

/// Whether all lines but the last end with a punctuation mark.
bool endsPhrases(const WrappedText& wrapped, const QString& text) {
    return std::all_of(wrapped.lines.begin(), wrapped.lines.end() - 1, [&](const TextSpan& line) {
        const QStringView words = wordsOf(line, text);
        return words.isEmpty() || words.back().isPunct();
    });
}

} // namespace

int lineHeight(const QFont& font) {
    return qCeil(QFontMetricsF(font).lineSpacing());
}

QString wrappableText(const QString& text) {
    QString result = text;
    result.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (QChar& each : result) {
        if (each == QChar::CarriageReturn || each == QChar::ParagraphSeparator ||
            each == QChar::LineSeparator) {
            each = QChar::LineFeed;
        } else if (each != QChar::LineFeed && each.category() == QChar::Other_Control) {
            each = QChar::Space;
        }
    }
    return result;
}

void wrapText(WrappedText& wrapped, const QString& text, const QFont& font, int width,
              std::size_t wanted) {
    const qsizetype startOfPass = wrapped.next;
    const std::size_t linesBefore = wrapped.lines.size();
    const bool wantsAll = wanted == std::numeric_limits<std::size_t>::max();
    const auto isEnough = [&] {
        return wrapped.lines.size() >= wanted ||
               (!wantsAll && wrapped.next - startOfPass >= kMaximumPerPass &&
                wrapped.lines.size() - linesBefore >= kMinimumLines);
    };
    while (!wrapped.isWhole(text) && !isEnough()) {
        // Reads no further than the piece, since a paragraph may be as long as the text.
        const qsizetype start = wrapped.next;
        const QStringView ahead = QStringView(text).mid(start, kPiece + 1);
        const qsizetype feed = ahead.indexOf(QChar::LineFeed);
        const qsizetype length = feed < 0 ? std::min(kPiece, ahead.size()) : feed;
        const bool isLast = feed >= 0 || start + length == text.size();
        if (!wrapped.isInParagraph) {
            wrapped.isRightToLeft = ahead.first(length).isRightToLeft();
        }
        wrapped.isInParagraph = !isLast;
        const TextSpan piece{start, length, wrapped.isRightToLeft};
        const auto lines = wrapPiece(text, piece, isLast, font, width);
        wrapped.lines.insert(wrapped.lines.end(), lines.begin(), lines.end());
        // After a paragraph: behind its line feed, or behind the end of the text.
        wrapped.next = isLast ? start + length + 1 : lines.back().start + lines.back().length;
    }
}

void balanceLines(WrappedText& wrapped, const QString& text, const QFont& font, int width) {
    constexpr std::size_t kMaximumLines = 6;
    constexpr qsizetype kMaximumLength = 1000; // UTF-16 units; some characters take no room
    const std::size_t count = wrapped.lines.size();
    if (text.size() > kMaximumLength || !wrapped.isWhole(text) || count < 2 ||
        count > kMaximumLines || isEven(widthsOf(wrapped, text, font))) {
        return;
    }
    std::optional<WrappedText> even;
    for (WrappedText next = wrapped;
         next.isWhole(text) && next.lines.size() == count && !breaksWords(next, text);) {
        const std::vector<double> widths = widthsOf(next, text, font);
        if (isEven(widths) && (!even || endsPhrases(next, text))) {
            even = next;
            if (endsPhrases(next, text)) {
                break;
            }
        }
        // The next smaller width at which a line breaks elsewhere.
        const int narrower = qCeil(*std::max_element(widths.begin(), widths.end())) - 1;
        if (narrower < 1 || narrower >= width) {
            break; // a single character is wider than the line
        }
        width = narrower;
        next = {};
        wrapText(next, text, font, width, count + 1);
    }
    if (even) {
        wrapped = *std::move(even);
    }
}

} // namespace brimlet
