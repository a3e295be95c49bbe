#pragma once

#include <QString>

#include <cstdint>

namespace brimlet {

// The menu's texts that contain numbers. Amounts are in euro cents. Independent of the user's
// locale.

/// An amount without decimals if it is whole euros ("€15"), else with two ("€12.34"). A minus sign
/// follows the euro sign.
[[nodiscard]] QString eurosShort(std::int64_t cents);

[[nodiscard]] QString earningsText(std::int64_t estimatedCents);
[[nodiscard]] QString recordedText(std::int64_t liveBucketsToday, std::int64_t liveBucketsNeeded,
                                   std::int64_t liveDaysThisWeek);
[[nodiscard]] QString splitText(std::int64_t liveHostCount);
/// Unlike `eurosShort`, the amount always has two decimals.
[[nodiscard]] QString bankedText(std::int64_t pendingStipendCents);

} // namespace brimlet
