#include "creative/marqueetext.h"

#include "creative/boundedmarks.h"
#include "host/trimmed.h"

#include <QStringList>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>
#include <limits>

namespace brimlet {
namespace {

QString wholePoints(double width) {
    const double whole = std::trunc(width);
    // Both bounds are exact doubles; 2^63 itself does not fit into a qint64.
    constexpr double kBound = 0x1p63;
    if (!std::isfinite(whole) || whole < -kBound || whole >= kBound) {
        qFatal("A width of the marquee line is out of range.");
    }
    return QString::number(static_cast<qint64>(whole));
}

bool isBreakOrControl(QChar c) {
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

} // namespace

QString restingText(const QString& brand, const QString& tagline) {
    QString rest = trimmed(brand);
    return rest.isEmpty() ? tagline : rest;
}

QString lineText(const QString& brand, const QString& tagline, bool showingTagline) {
    return showingTagline ? trimmed(tagline) : restingText(brand, tagline);
}

QString marqueeTaskID(const QString& brand, const QString& tagline, double containerWidth,
                      double taglineWidth, bool reduceMotion) {
    return QStringList{brand, tagline, wholePoints(containerWidth), wholePoints(taglineWidth),
                       reduceMotion ? QStringLiteral("true") : QStringLiteral("false")}
        .join(u'|');
}

double overflowWidth(double taglineWidth, double containerWidth) {
    return std::max(0.0, taglineWidth - containerWidth);
}

std::chrono::nanoseconds sleepLength(double seconds) {
    const double nanoseconds = (seconds < 0 ? 0 : seconds) * 1e9;
    if (!std::isfinite(nanoseconds) || nanoseconds >= 0x1p64) {
        qFatal("A time of the marquee line is out of range.");
    }
    // std::chrono::nanoseconds is signed and ends at 292 years; longer times are clamped to that.
    using Count = std::chrono::nanoseconds::rep;
    return std::chrono::nanoseconds(nanoseconds >= 0x1p63 ? std::numeric_limits<Count>::max()
                                                          : static_cast<Count>(nanoseconds));
}

QString singleLine(const QString& text, qsizetype longest) {
    QString line = text.left(longest);
    if (text.size() > longest) {
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.left(longest + 2));
        finder.setPosition(longest);
        const qsizetype end = finder.isAtBoundary() ? longest : finder.toPreviousBoundary();
        line.truncate(end > 0 ? end : longest);
    }
    std::replace_if(line.begin(), line.end(), isBreakOrControl, QChar(QChar::Space));
    return withBoundedMarks(line);
}

} // namespace brimlet
