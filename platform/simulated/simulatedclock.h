#pragma once

#include "platform/clock.h"

namespace brimlet {

/// A clock that runs faster than the real one by a constant factor. The real clock must outlive it.
class SimulatedClock final : public Clock {
public:
    /// `speed` is 1 or more.
    SimulatedClock(Clock& real, double speed);

    [[nodiscard]] TimePoint now() const override;
    [[nodiscard]] std::chrono::nanoseconds uptime() const override;
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::nanoseconds interval,
                                                         std::function<void()> tick) override;
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                      std::stop_token stop) override;

private:
    Clock& m_real;
    const double m_speed;
    // The moment at which the two clocks show the same time.
    const TimePoint m_start;
    const std::chrono::nanoseconds m_startUptime;
};

} // namespace brimlet
