#include "menu/hosttheme.h"

namespace brimlet {

const QColor& HostTheme::bg() {
    static const QColor color = QColor::fromRgbF(0.07F, 0.07F, 0.07F);
    return color;
}

const QColor& HostTheme::card() {
    static const QColor color = QColor::fromRgbF(0.1F, 0.1F, 0.1F);
    return color;
}

const QColor& HostTheme::line() {
    static const QColor color = QColor::fromRgbF(1, 1, 1, 0.08F);
    return color;
}

const QColor& HostTheme::dim() {
    static const QColor color = QColor::fromRgbF(1, 1, 1, 0.55F);
    return color;
}

const QColor& HostTheme::faint() {
    static const QColor color = QColor::fromRgbF(1, 1, 1, 0.42F);
    return color;
}

const QColor& HostTheme::accent() {
    static const QColor color = QColor::fromRgbF(0.24F, 0.42F, 1);
    return color;
}

const QColor& HostTheme::live() {
    static const QColor color = QColor::fromRgbF(0.19F, 0.82F, 0.35F);
    return color;
}

} // namespace brimlet
