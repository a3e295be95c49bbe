#include "creative/images/cpudeadline.h"

#include <ctime>
#include <optional>

namespace brimlet {
namespace {

/// CPU time of the calling thread; absent where the system cannot say.
std::optional<std::chrono::nanoseconds> usedCpuTime() {
    timespec time{};
    if (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) != 0) {
        return std::nullopt;
    }
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

CpuDeadline cpuDeadline(std::chrono::milliseconds limit) {
    return [start = usedCpuTime(), limit] {
        const std::optional<std::chrono::nanoseconds> now = usedCpuTime();
        return !start || !now || *now - *start >= limit;
    };
}

} // namespace brimlet
