#pragma once

#include <array>
#include <string_view>

namespace brimlet::placement {

/// One of the made-up brands that the service shows when a scenario names no creatives.
struct Brand {
    /// Name in "/assets/NAME.png" and "/brands/NAME".
    std::string_view name;
    std::string_view slotId;
    std::string_view title;
    std::string_view tagline;
};

/// The right brand's tagline is wider than a 108-point capsule, so that it scrolls.
inline constexpr std::array<Brand, 2> sampleBrands{{
    {"quiet-bicycle", "left", "Quiet Bike", "Home before the bell"},
    {"palindrome-tea", "right", "Palindrome",
     "Never odd or even: loose-leaf tea that tastes the same forwards and backwards"},
}};

} // namespace brimlet::placement
