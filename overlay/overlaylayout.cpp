#include "overlay/overlaylayout.h"

namespace brimlet {
namespace {

/// Points.
double pillWidth(const std::optional<SlotCreative>& creative) {
    const bool hasText =
        creative && (!creative->brandName.isEmpty() || !creative->tagline.isEmpty());
    return hasText ? 108 : 36;
}

} // namespace

OverlayLayout overlayLayout(double panelWidth, double notchWidth,
                            const std::optional<SlotCreative>& left,
                            const std::optional<SlotCreative>& right) {
    constexpr double kSpacing = 6;
    constexpr double kTopPadding = 1;
    constexpr double kPillHeight = 24;
    const double leftWidth = pillWidth(left);
    const double rightWidth = pillWidth(right);
    const double rowWidth = leftWidth + kSpacing + notchWidth + kSpacing + rightWidth;
    const double x = (panelWidth - rowWidth) / 2;
    OverlayLayout layout;
    layout.left = {x, kTopPadding, leftWidth, kPillHeight};
    layout.right = {x + rowWidth - rightWidth, kTopPadding, rightWidth, kPillHeight};
    return layout;
}

} // namespace brimlet
