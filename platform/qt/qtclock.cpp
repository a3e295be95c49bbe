#include "platform/qt/qtclock.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace brimlet {
namespace {

class QtRepeatingTimer final : public RepeatingTimer {
public:
    QtRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> tick) {
        // Precise timers do not wake the program more often, and coarse ones drift apart.
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout(std::move(tick));
        m_timer.start(interval);
    }

private:
    QTimer m_timer;
};

} // namespace

QtClock::QtClock() {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout([this] { wakeThoseDue(); });
}

std::unique_ptr<RepeatingTimer> QtClock::repeat(std::chrono::milliseconds interval,
                                                std::function<void()> tick) {
    return std::make_unique<QtRepeatingTimer>(interval, std::move(tick));
}

QCoro::Task<> QtClock::sleep(std::chrono::nanoseconds duration, std::stop_token stop) {
    const Deferred<bool> wake;
    // As good as for ever, and far from where the sum would turn round.
    constexpr std::chrono::nanoseconds kLongest = std::chrono::hours(100 * 365 * 24);
    const std::pair key(uptime() + std::min(duration, kLongest), m_nextNumber++);
    m_sleepers.emplace(key, wake);
    startTimer();
    const std::stop_callback onStop(stop, [wake] { wake.resolve(false); });
    const auto isAlive = m_isAlive;
    const bool isOver = co_await wake;
    if (!isOver && *isAlive) {
        m_sleepers.erase(key); // which may be gone already, if it was stopped on the dot
        startTimer();
    }
}

void QtClock::wakeThoseDue() {
    const auto end = m_sleepers.upper_bound({uptime(), std::numeric_limits<int>::max()});
    std::vector<Deferred<bool>> due;
    std::transform(m_sleepers.begin(), end, std::back_inserter(due),
                   [](const auto& sleeper) { return sleeper.second; });
    m_sleepers.erase(m_sleepers.begin(), end);
    for (const auto& wake : due) {
        wake.resolve(true);
    }
    startTimer();
}

/// For the sleeper that ends first. One that ends later than a timer can run is looked at again.
void QtClock::startTimer() {
    constexpr std::chrono::milliseconds kLongestTimer = std::chrono::hours(24 * 24);
    if (m_sleepers.empty()) {
        m_timer.stop();
        return;
    }
    const auto rest =
        std::chrono::ceil<std::chrono::milliseconds>(m_sleepers.begin()->first.first - uptime());
    m_timer.start(std::clamp(rest, std::chrono::milliseconds(0), kLongestTimer));
}

} // namespace brimlet
