#pragma once

#include "platform/clock.h"

#include <QStringView>

#include <functional>
#include <optional>

namespace brimlet {

/// True before `pausedUntil`; false at that moment, later, and without a pause.
[[nodiscard]] bool isPausedAt(Clock::TimePoint now, std::optional<Clock::TimePoint> pausedUntil);

/// The rule for whether ads may show: there is a notch, no pause, no sleeping screen, no
/// `forceHide` and `weekStatus` is exactly "live". Checked in this order up to the first "no", so
/// `isPaused`, which reads the clock, is called only with a notch.
[[nodiscard]] bool areAdsVisible(bool hasNotch, const std::function<bool()>& isPaused,
                                 bool screenAsleep, bool forceHide, QStringView weekStatus);

} // namespace brimlet
