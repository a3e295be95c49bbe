#pragma once

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

namespace brimlet {

/// A running repeating timer. Destroying it stops it; this is allowed inside `tick`.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;
};

/// Wall-clock time, monotonic time and timers. Main thread only.
class Clock {
public:
    using TimePoint = std::chrono::system_clock::time_point;

    virtual ~Clock() = default;

    /// Wall-clock time. It jumps when the user or the network sets the clock.
    [[nodiscard]] virtual TimePoint now() const = 0;

    /// Time since an unspecified moment before the program started. Monotonic; does not advance
    /// while the machine sleeps.
    [[nodiscard]] virtual std::chrono::nanoseconds uptime() const = 0;

    /// Calls `tick` every `interval`, the first time after one interval. Monotonic: setting the
    /// wall clock has no effect. Missed ticks are not made up, and a late one does not shift the
    /// next.
    [[nodiscard]] virtual std::unique_ptr<RepeatingTimer> repeat(std::chrono::nanoseconds interval,
                                                                 std::function<void()> tick) = 0;

    /// Ends after `duration` (monotonic), or as soon as a stop is requested; `stop` shows which it
    /// was.
    [[nodiscard]] virtual QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                              std::stop_token stop) = 0;
};

} // namespace brimlet
