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

/// Measures the notch from the strips beside it; at least 20 by 22 points. Without a built-in
/// screen, or on one without strips, 180 by 32.
[[nodiscard]] NotchMetrics notchMetrics(const std::optional<Screen>& builtIn);

/// Where the panel stands: centred on the screen's top edge, with room for a pill on either side.
[[nodiscard]] Rect panelFrame(const Rect& screenFrame, const NotchMetrics& notch);

} // namespace brimlet
