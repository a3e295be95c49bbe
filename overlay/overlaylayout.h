#pragma once

#include "host/assignment.h"

#include <optional>

namespace brimlet {

/// A pill's rectangle in the panel, in points: the origin is the panel's top left corner, y grows
/// downwards.
struct PillFrame final {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const PillFrame&) const = default;
};

/// The places of both pills, also of one that is not shown.
struct OverlayLayout final {
    PillFrame left;
    PillFrame right;

    bool operator==(const OverlayLayout&) const = default;
};

/// Places left pill, gap and right pill in a row at the panel's top edge. A pill is 108 points
/// wide, or 36 without text or without a creative; the gap is as wide as the notch plus 6 points on
/// either side. The row as a whole is centred, so pills of different widths shift the gap. Widths
/// in points.
[[nodiscard]] OverlayLayout overlayLayout(double panelWidth, double notchWidth,
                                          const std::optional<SlotCreative>& left,
                                          const std::optional<SlotCreative>& right);

} // namespace brimlet
