#include "platform/simulated/simulatedclock.h"

#include <algorithm>

namespace brimlet {
namespace {

template <typename Duration>
Duration times(Duration duration, double factor) {
    return std::chrono::duration_cast<Duration>(duration * factor);
}

} // namespace

SimulatedClock::SimulatedClock(Clock& real, double speed)
    : m_real(real)
    , m_speed(speed)
    , m_start(real.now())
    , m_startUptime(real.uptime()) {}

Clock::TimePoint SimulatedClock::now() const {
    return m_start + times(m_real.now() - m_start, m_speed);
}

std::chrono::nanoseconds SimulatedClock::uptime() const {
    return m_startUptime + times(m_real.uptime() - m_startUptime, m_speed);
}

std::unique_ptr<RepeatingTimer> SimulatedClock::repeat(std::chrono::nanoseconds interval,
                                                       std::function<void()> tick) {
    // The real timer's shortest interval is a millisecond.
    constexpr std::chrono::nanoseconds kShortest = std::chrono::milliseconds(1);
    const auto shortened = std::max(times(interval, 1 / m_speed), kShortest);
    return m_real.repeat(shortened, std::move(tick));
}

QCoro::Task<> SimulatedClock::sleep(std::chrono::nanoseconds duration, std::stop_token stop) {
    return m_real.sleep(times(duration, 1 / m_speed), std::move(stop));
}

} // namespace brimlet
