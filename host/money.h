#pragma once

#include <QString>

#include <cstdint>

namespace brimlet {

/// An amount of euro cents as "€12.34": always two decimals and a point, no grouping, a minus after
/// the euro sign, whatever the user's locale.
[[nodiscard]] QString eurosWithCents(std::int64_t cents);

} // namespace brimlet
