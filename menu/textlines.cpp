#include "menu/textlines.h"

#include <QFontMetricsF>
#include <QTextLayout>

#include <algorithm>

namespace brimlet {
namespace {

/// How much is laid out at a time, in UTF-16 units; longer than any line.
constexpr qsizetype kPiece = 2048;

/// The lines of a piece of a paragraph. Unless the paragraph ends with it, its last line may go on
/// and is left to the next piece.
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
              std::size_t enough) {
    while (!wrapped.isWhole(text) && wrapped.lines.size() < enough) {
        const qsizetype start = wrapped.next;
        const qsizetype feed = text.indexOf(QChar::LineFeed, start);
        const qsizetype end = feed < 0 ? text.size() : feed;
        const qsizetype paragraph =
            start == 0 ? 0 : text.lastIndexOf(QChar::LineFeed, start - 1) + 1;
        const bool isRightToLeft =
            QStringView(text).mid(paragraph, end - paragraph).isRightToLeft();
        const qsizetype length = std::min(kPiece, end - start);
        const bool isLast = start + length == end;
        const auto lines = wrapPiece(text, {start, length, isRightToLeft}, isLast, font, width);
        wrapped.lines.insert(wrapped.lines.end(), lines.begin(), lines.end());
        // Over the line feed, or over the end, once a paragraph is through.
        wrapped.next = isLast ? end + 1 : lines.back().start + lines.back().length;
    }
}

} // namespace brimlet
