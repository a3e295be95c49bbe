#include "creative/boundedmarks.h"

namespace brimlet {

QString withBoundedMarks(const QString& text) {
    constexpr int kMost = 30;
    QString bounded;
    int inARow = 0;
    qsizetype kept = 0; // up to here it is decided what becomes of the text
    for (qsizetype i = 0; i < text.size();) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const char32_t character =
            isPair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode();
        const qsizetype next = i + (isPair ? 2 : 1);
        inARow = QChar::isMark(character) ? inARow + 1 : 0;
        if (inARow > kMost) {
            bounded += QStringView(text).mid(kept, i - kept);
            kept = next;
        }
        i = next;
    }
    return kept == 0 ? text : bounded + text.mid(kept);
}

} // namespace brimlet
