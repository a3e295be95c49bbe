#include "creative/images/workbudget.h"

#include <ctime>
#include <optional>

namespace brimlet {
namespace {

/// Absent when the system does not tell.
std::optional<std::chrono::nanoseconds> workedSoFar() {
    timespec time{};
    if (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) != 0) {
        return std::nullopt;
    }
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

WorkBudget threadTime(std::chrono::milliseconds limit) {
    return [start = workedSoFar(), limit] {
        const std::optional<std::chrono::nanoseconds> now = workedSoFar();
        return !start || !now || *now - *start >= limit;
    };
}

} // namespace brimlet
