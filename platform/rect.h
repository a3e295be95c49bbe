#pragma once

namespace brimlet {

/// A rectangle in the desktop's global space as AppKit counts it: points, origin at the bottom left
/// of the primary screen, y growing upwards. Adapters convert from and to their own space.
struct Rect final {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double minX() const { return x; }
    [[nodiscard]] double midX() const { return x + width * 0.5; }
    [[nodiscard]] double maxX() const { return x + width; }
    [[nodiscard]] double minY() const { return y; }
    [[nodiscard]] double maxY() const { return y + height; }

    bool operator==(const Rect&) const = default;
};

} // namespace brimlet
