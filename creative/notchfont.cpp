#include "creative/notchfont.h"

#include <QGuiApplication>

namespace brimlet {

QFont systemFont(int size, QFont::Weight weight) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

const QFont& NotchFont::pill() {
    static const QFont font = systemFont(12, QFont::DemiBold);
    return font;
}

const QFont& NotchFont::tagline() {
    static const QFont font = systemFont(11, QFont::Normal);
    return font;
}

const QFont& NotchFont::fallbackMark() {
    static const QFont font = systemFont(11, QFont::DemiBold);
    return font;
}

} // namespace brimlet
