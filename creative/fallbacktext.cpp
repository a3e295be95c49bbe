#include "creative/fallbacktext.h"

#include <QTextBoundaryFinder>

namespace brimlet {

QString fallbackText(const QString& brand) {
    const QString trimmed = brand.trimmed();
    if (trimmed.isEmpty()) {
        return QStringLiteral("\u00b7");
    }
    // Far longer than any real character; bounds the work for untrusted input.
    const QString start = trimmed.left(1024);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, start);
    return start.left(finder.toNextBoundary());
}

} // namespace brimlet
