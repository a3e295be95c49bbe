#pragma once

#include "platform/clock.h"

#include <QStringView>

#include <functional>
#include <optional>

namespace brimlet {

/// Paused strictly before the end of the pause; a past pause simply stops counting.
[[nodiscard]] bool isPausedAt(Clock::TimePoint now, std::optional<Clock::TimePoint> pausedUntil);

/// The one rule for whether ads may show. Evaluated in the order of the arguments and left at the
/// first "no", so that `isPaused`, which reads the clock, is asked only on a notched machine.
[[nodiscard]] bool areAdsVisible(bool hasNotch, const std::function<bool()>& isPaused,
                                 bool screenAsleep, bool forceHide, QStringView weekStatus);

} // namespace brimlet
