#include "platform/mac/rules/screenfacts.h"

#include <cmath>
#include <limits>

namespace brimlet {

std::optional<std::uint32_t> displayNumber(const std::optional<double>& described) {
    constexpr double kGreatest = std::numeric_limits<std::uint32_t>::max();
    if (!described || !(*described >= 0 && *described <= kGreatest) ||
        std::floor(*described) != *described) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(*described);
}

std::optional<Rect> stripBesideNotch(const Rect& area) {
    return area.width > 0 && area.height > 0 ? std::optional(area) : std::nullopt;
}

} // namespace brimlet
