#include "creative/boundedmarks.h"

namespace brimlet {

QString withBoundedMarks(const QString& text) {
    constexpr int kMaximumMarks = 30;
    QString bounded;
    int inARow = 0;
    qsizetype handled = 0; // the text before this is in `bounded`, or dropped
    for (qsizetype i = 0; i < text.size();) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const char32_t character =
            isPair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode();
        const qsizetype next = i + (isPair ? 2 : 1);
        inARow = QChar::isMark(character) ? inARow + 1 : 0;
        if (inARow > kMaximumMarks) {
            bounded += QStringView(text).mid(handled, i - handled);
            handled = next;
        }
        i = next;
    }
    return handled == 0 ? text : bounded + text.mid(handled);
}

} // namespace brimlet
