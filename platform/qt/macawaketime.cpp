#include "platform/qt/awaketime.h"

#include <time.h> // the system's own, which has more than <ctime>

namespace brimlet {

std::chrono::nanoseconds awakeTime() {
    return std::chrono::nanoseconds(::clock_gettime_nsec_np(CLOCK_UPTIME_RAW));
}

} // namespace brimlet
