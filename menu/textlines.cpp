#include "menu/textlines.h"

#include <QFontMetricsF>
#include <QTextLayout>

#include <algorithm>

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

} // namespace brimlet
