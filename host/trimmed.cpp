#include "host/trimmed.h"

#include <algorithm>

namespace brimlet {
namespace {

bool isVisible(QChar c) {
    constexpr QChar kZeroWidthSpace(0x200B);
    return !c.isSpace() && c != kZeroWidthSpace;
}

} // namespace

QString trimmed(const QString& text) {
    const auto* const begin = std::find_if(text.cbegin(), text.cend(), isVisible);
    const auto end = std::find_if(text.crbegin(), std::make_reverse_iterator(begin), isVisible);
    return QString(begin, end.base() - begin);
}

} // namespace brimlet
