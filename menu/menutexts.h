#pragma once

#include <QString>

#include <cstdint>

namespace brimlet {

// The menu's texts that hold figures. Amounts are euro cents; the user's locale changes nothing.

/// The earnings figure: whole euros without decimals ("€15"), everything else with two ("€12.34").
/// A minus stands after the euro sign.
[[nodiscard]] QString eurosShort(std::int64_t cents);

[[nodiscard]] QString earningsText(std::int64_t estimatedCents);
[[nodiscard]] QString recordedText(std::int64_t liveBucketsToday, std::int64_t liveBucketsNeeded,
                                   std::int64_t liveDaysThisWeek);
[[nodiscard]] QString splitText(std::int64_t liveHostCount);
/// Unlike the earnings figure it always has two decimals.
[[nodiscard]] QString bankedText(std::int64_t pendingStipendCents);

} // namespace brimlet
