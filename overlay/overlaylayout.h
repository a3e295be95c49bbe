#pragma once

#include "host/assignment.h"

#include <optional>

namespace brimlet {

/// A pill's place inside the panel: points, origin at the panel's top left, y growing downwards.
struct PillFrame final {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const PillFrame&) const = default;
};

struct OverlayLayout final {
    PillFrame left;
    PillFrame right;

    bool operator==(const OverlayLayout&) const = default;
};

/// What a slot takes up: 108 points with any text, 36 with none or without a creative.
[[nodiscard]] double pillWidth(const std::optional<SlotCreative>& creative);

/// The row of left pill, gap of the notch's width and right pill, hung from the panel's top edge
/// and centred as a whole, so that unequal slots move the gap off the notch.
[[nodiscard]] OverlayLayout overlayLayout(double panelWidth, double notchWidth,
                                          const std::optional<SlotCreative>& left,
                                          const std::optional<SlotCreative>& right);

} // namespace brimlet
