#include "overlay/notchgeometry.h"

#include <algorithm>

namespace brimlet {

NotchMetrics notchMetrics(const std::optional<Screen>& builtIn) {
    if (!builtIn || !builtIn->auxiliaryTopLeftArea || !builtIn->auxiliaryTopRightArea) {
        return {};
    }
    const Rect& left = *builtIn->auxiliaryTopLeftArea;
    const Rect& right = *builtIn->auxiliaryTopRightArea;
    constexpr double kMinimumWidth = 20;
    constexpr double kMinimumHeight = 22;
    NotchMetrics notch;
    notch.width = std::max(right.minX() - left.maxX(), kMinimumWidth);
    notch.height =
        std::max(builtIn->frame.maxY() - std::min(left.minY(), right.minY()), kMinimumHeight);
    return notch;
}

Rect panelFrame(const Rect& screenFrame, const NotchMetrics& notch) {
    constexpr double kPillAllowance = 216;
    constexpr double kSideAllowance = 28;
    constexpr double kMinimumBandHeight = 24;
    constexpr double kBottomAllowance = 8;
    // In this order: adding the sum of both would round fractional notch widths differently.
    const double width = (notch.width + kPillAllowance) + kSideAllowance;
    const double height = std::max(notch.height, kMinimumBandHeight) + kBottomAllowance;
    return {screenFrame.midX() - width * 0.5, screenFrame.maxY() - height, width, height};
}

} // namespace brimlet
