#include "platform/linux/x11menuscreens.h"

#include "platform/linux/windowmanager.h"

#include <QGuiApplication>
#include <QLocale>
#include <QScreen>

namespace brimlet {
namespace {

/// Whether bars have their tray at the left end: in languages from right to left, in GNOME and
/// MATE. Xfce's and LXQt's bars were not seen to mirror, nor was Plasma's.
bool areBarsMirrored() {
    const QStringList desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    const bool isMirroring =
        desktop.contains(QStringLiteral("GNOME")) || desktop.contains(QStringLiteral("MATE"));
    return isMirroring && QLocale::system().textDirection() == Qt::RightToLeft;
}

} // namespace

std::vector<MenuScreen> x11MenuScreens(const std::vector<QRect>& monitorAreas) {
    const auto screens = QGuiApplication::screens();
    ReservedAreas areas = x11::reservedAreas();
    if (!monitorAreas.empty()) {
        areas.monitorWorkAreas = monitorAreas;
    }
    const bool isMirrored = areBarsMirrored();
    std::vector<MenuScreen> menuScreens;
    for (const QScreen* const screen : screens) {
        // Qt keeps the corner of a screen where it is in pixels, and scales what is on the screen.
        const QRect geometry = screen->geometry();
        const double scale = screen->devicePixelRatio();
        const QRect pixels(geometry.topLeft(), (QSizeF(geometry.size()) * scale).toSize());
        const QRect free = freeArea(pixels, screens.size() == 1, areas);
        const auto points = [&](QPoint corner) {
            return geometry.topLeft() + (corner - geometry.topLeft()) / scale;
        };
        const QRect available(points(free.topLeft()),
                              points(free.bottomRight() + QPoint(1, 1)) - QPoint(1, 1));
        menuScreens.push_back({geometry, available & geometry, isMirrored});
    }
    return menuScreens;
}

QPoint toX11Pixels(QPoint position) {
    const QScreen* const screen = QGuiApplication::screenAt(position);
    if (screen == nullptr) {
        return position;
    }
    const QPoint corner = screen->geometry().topLeft();
    return corner + (QPointF(position - corner) * screen->devicePixelRatio()).toPoint();
}

} // namespace brimlet
