#include "creative/fallbacktext.h"

#include "host/trimmed.h"

#include <QTextBoundaryFinder>

namespace brimlet {

QString fallbackText(const QString& brand) {
    const QString name = trimmed(brand);
    if (name.isEmpty()) {
        return QStringLiteral("\u00b7");
    }
    // Far longer than any real character; bounds the work for untrusted input.
    const QString start = name.left(1024);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, start);
    return start.left(finder.toNextBoundary());
}

} // namespace brimlet
