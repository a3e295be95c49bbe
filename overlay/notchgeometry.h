#pragma once

#include "platform/screens.h"

#include <optional>

namespace brimlet {

/// The camera notch's size in points.
struct NotchMetrics final {
    double width = 180;
    double height = 32;

    bool operator==(const NotchMetrics&) const = default;
};

/// Measures the notch between the auxiliary areas on its left and right: at least 20 by 22 points,
/// or 180 by 32 without a built-in screen or one of the areas.
[[nodiscard]] NotchMetrics notchMetrics(const std::optional<Screen>& builtIn);

/// The panel's frame in the coordinates of `screenFrame`, in points: centred at the screen's top
/// edge, with room for a pill on either side of the notch.
[[nodiscard]] Rect panelFrame(const Rect& screenFrame, const NotchMetrics& notch);

} // namespace brimlet
