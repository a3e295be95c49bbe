#include "host/visibility.h"

namespace brimlet {

bool isPausedAt(Clock::TimePoint now, std::optional<Clock::TimePoint> pausedUntil) {
    return pausedUntil && *pausedUntil > now;
}

bool areAdsVisible(bool hasNotch, const std::function<bool()>& isPaused, bool screenAsleep,
                   bool forceHide, QStringView weekStatus) {
    return hasNotch && !isPaused() && !screenAsleep && !forceHide && weekStatus == u"live";
}

} // namespace brimlet
