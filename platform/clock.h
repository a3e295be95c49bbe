#pragma once

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

namespace brimlet {

/// A running repeating timer; destroying it invalidates the timer.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;
};

/// Time, in both senses. Main thread only.
class Clock {
public:
    using TimePoint = std::chrono::system_clock::time_point;

    virtual ~Clock() = default;

    /// Wall-clock time. It jumps when the user or the network sets the clock.
    [[nodiscard]] virtual TimePoint now() const = 0;

    /// Time passed since some moment before the program began. Monotonic: it never jumps, and it
    /// stands still while the machine sleeps.
    [[nodiscard]] virtual std::chrono::nanoseconds uptime() const = 0;

    /// Calls `tick` every `interval`, for the first time after one interval. Monotonic: a jump of
    /// the wall clock changes nothing, and ticks missed while the machine slept are not made up.
    [[nodiscard]] virtual std::unique_ptr<RepeatingTimer> repeat(std::chrono::milliseconds interval,
                                                                 std::function<void()> tick) = 0;

    /// Ends after `duration` (monotonic), or as soon as a stop is requested. The caller looks at
    /// the token to tell which.
    [[nodiscard]] virtual QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                              std::stop_token stop) = 0;
};

} // namespace brimlet
