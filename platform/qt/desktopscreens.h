#pragma once

#include "platform/qt/menuplacement.h"

#include <QGuiApplication>
#include <QRectF>
#include <QScreen>

#include <vector>

namespace brimlet {

// Qt's current screens. Separate from menuplacement.h, whose rules need no application object.

/// The primary screen's geometry in Qt's space; empty while there is no screen.
[[nodiscard]] inline QRectF primaryGeometry() {
    const QScreen* const primary = QGuiApplication::primaryScreen();
    return primary == nullptr ? QRectF() : QRectF(primary->geometry());
}

/// All screens, the primary one first.
[[nodiscard]] inline std::vector<MenuScreen> menuScreens() {
    std::vector<MenuScreen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.push_back({screen->geometry(), screen->availableGeometry()});
    }
    return screens;
}

} // namespace brimlet
