#pragma once

#include <QString>

#include <cstdint>

namespace brimlet {

/// An amount of euro cents as "€12.34", the same in every locale: two decimals, a point, no
/// grouping, and a minus sign after the euro sign ("€-0.50"). Computed as a double, so exact only
/// up to about 70 trillion euros.
[[nodiscard]] QString eurosWithCents(std::int64_t cents);

} // namespace brimlet
