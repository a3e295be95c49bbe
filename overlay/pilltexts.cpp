#include "overlay/pilltexts.h"

#include "creative/marqueetext.h"
#include "host/trimmed.h"

#include <QStringList>

namespace brimlet {

QString toolTipOf(const SlotCreative& creative) {
    if (creative.brandURL && creative.brandURL->host()) {
        return *creative.brandURL->host();
    }
    return singleLine(creative.brandName);
}

QString spokenTextOf(const SlotCreative& creative) {
    QStringList parts{singleLine(trimmed(creative.brandName)),
                      singleLine(trimmed(creative.tagline))};
    parts.removeAll(QString());
    parts.removeDuplicates();
    return parts.isEmpty() ? trimmed(toolTipOf(creative)) : parts.join(QStringLiteral(", "));
}

QString shortToolTip(const QString& text) {
    constexpr qsizetype kLongest = 120;
    QString line = singleLine(text, kLongest);
    if (line.size() < text.size()) {
        line += QChar(0x2026);
    }
    return line;
}

QString asPlainToolTip(const QString& text) {
    const QString line = shortToolTip(text);
    // Qt's tooltips guess whether a text is markup. This one is, with the text escaped.
    return line.isEmpty() ? line
                          : QStringLiteral("<span style='white-space:pre'>%1</span>")
                                .arg(line.toHtmlEscaped());
}

} // namespace brimlet
