#include "platform/linux/qtscreens.h"

#include <QGuiApplication>
#include <QScreen>

namespace brimlet {

QtScreens::QtScreens(const QString& root)
    : LinuxScreens(outputs, root) {
    const auto announce = [this] { announceChange(); };
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        announceChange();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, announce);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, announce);
    for (QScreen* screen : QGuiApplication::screens()) {
        watch(screen);
    }
}

void QtScreens::watch(QScreen* screen) {
    const auto announce = [this] { announceChange(); };
    // These two cover moving, resizing and rescaling. A new scale is signalled before the new
    // geometry, and alone when rounding leaves the geometry unchanged.
    connect(screen, &QScreen::geometryChanged, this, announce);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, announce);
}

std::vector<DesktopOutput> QtScreens::outputs() {
    std::vector<DesktopOutput> outputs;
    for (const QScreen* screen : QGuiApplication::screens()) {
        outputs.push_back({screen->name(), screen->geometry()});
    }
    return outputs;
}

} // namespace brimlet
