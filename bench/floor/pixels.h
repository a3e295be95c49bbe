#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace brimlet {

/// A picture in the form the X server takes: premultiplied ARGB, one row after the other.
struct Pixels final {
    Pixels(int pixelWidth, int pixelHeight, std::uint32_t color)
        : width(pixelWidth)
        , height(pixelHeight)
        , values(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), color) {}

    [[nodiscard]] std::uint32_t& at(int x, int y) {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }

    int width;
    int height;
    std::vector<std::uint32_t> values;
};

/// Black at opacity 0.96, as behind the program's texts.
inline constexpr std::uint32_t kGround = 245U << 24U;

/// A text in white on the ground, upright centred, at least `leastWidth` wide. Letter by letter
/// from left to right, without kerning or shaping. Nothing but the picture is kept.
[[nodiscard]] Pixels textPixels(const std::string& utf8, int leastWidth, int height);

} // namespace brimlet
