#include "platform/qt/awaketime.h"

#include <time.h> // not <ctime>, which lacks clock_gettime_nsec_np

namespace brimlet {

std::chrono::nanoseconds awakeTime() {
    return std::chrono::nanoseconds(::clock_gettime_nsec_np(CLOCK_UPTIME_RAW));
}

} // namespace brimlet
