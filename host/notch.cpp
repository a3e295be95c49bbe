#include "host/notch.h"

namespace brimlet {

std::optional<Screen> builtInScreen(const std::vector<Screen>& screens,
                                    const std::function<bool(std::uint32_t)>& isBuiltIn) {
    for (const Screen& screen : screens) {
        if (isBuiltIn(screen.number.value_or(0))) {
            return screen;
        }
    }
    return std::nullopt;
}

std::optional<Screen> builtInScreen(const Screens& screens) {
    return builtInScreen(screens.list(),
                         [&](std::uint32_t number) { return screens.isBuiltIn(number); });
}

bool hasNotch(const std::optional<Screen>& builtIn) {
    if (!builtIn || !builtIn->auxiliaryTopLeftArea || !builtIn->auxiliaryTopRightArea) {
        return false;
    }
    return builtIn->auxiliaryTopRightArea->minX() - builtIn->auxiliaryTopLeftArea->maxX() > 20.0;
}

} // namespace brimlet
