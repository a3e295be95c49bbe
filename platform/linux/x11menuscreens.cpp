#include "platform/linux/x11menuscreens.h"

#include "platform/qt/desktopscreens.h"

namespace brimlet {

std::vector<MenuScreen> x11MenuScreens() {
    return menuScreens();
}

} // namespace brimlet
