#include "platform/qt/qtclock.h"

#include "platform/deferred.h"

#include <algorithm>

namespace brimlet {

/// A timer of a QtClock: an entry in its queue that enters itself anew with each tick. One that is
/// late ticks once and goes on from there.
class QtRepeatingTimer final : public RepeatingTimer {
public:
    QtRepeatingTimer(QtClock& clock, std::chrono::nanoseconds interval, std::function<void()> tick)
        : m_clock(clock)
        , m_isClockAlive(clock.m_isAlive)
        , m_interval(interval)
        , m_tick(std::make_shared<std::function<void()>>(std::move(tick))) {
        enter(clock.uptime() + interval);
    }
    ~QtRepeatingTimer() override {
        if (*m_isClockAlive) {
            m_clock.remove(m_key);
        }
    }
    QtRepeatingTimer(const QtRepeatingTimer&) = delete;
    QtRepeatingTimer& operator=(const QtRepeatingTimer&) = delete;

private:
    void enter(std::chrono::nanoseconds due) {
        m_key = m_clock.enter(due, [this] { act(); });
    }
    void act() {
        const auto now = m_clock.uptime();
        const auto next = m_key.first + m_interval;
        enter(next > now ? next : now + m_interval);
        const auto tick = m_tick; // which may destroy this timer
        (*tick)();
    }

    QtClock& m_clock;
    std::shared_ptr<const bool> m_isClockAlive;
    std::chrono::nanoseconds m_interval;
    std::shared_ptr<std::function<void()>> m_tick;
    QtClock::Key m_key;
};

QtClock::QtClock() {
    m_timer.setSingleShot(true);
    // Precise timers do not wake the program more often, and coarse ones drift apart.
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout([this] { actOnThoseDue(); });
}

std::unique_ptr<RepeatingTimer> QtClock::repeat(std::chrono::milliseconds interval,
                                                std::function<void()> tick) {
    return std::make_unique<QtRepeatingTimer>(*this, interval, std::move(tick));
}

QCoro::Task<> QtClock::sleep(std::chrono::nanoseconds duration, std::stop_token stop) {
    const Deferred<bool> wake;
    // As good as for ever, and far from where the sum would turn round.
    constexpr std::chrono::nanoseconds kLongest = std::chrono::hours(100 * 365 * 24);
    const Key key = enter(uptime() + std::clamp(duration, std::chrono::nanoseconds(0), kLongest),
                          [wake] { wake.resolve(true); });
    const std::stop_callback onStop(stop, [wake] { wake.resolve(false); });
    const auto isAlive = m_isAlive;
    const bool isOver = co_await wake;
    if (!isOver && *isAlive) {
        remove(key); // which may be gone already, if it was stopped on the dot
    }
}

QtClock::Key QtClock::enter(std::chrono::nanoseconds due, std::function<void()> action) {
    const Key key(due, m_nextNumber++);
    m_due.emplace(key, std::move(action));
    startTimer();
    return key;
}

void QtClock::remove(const Key& key) {
    m_due.erase(key);
    startTimer();
}

/// Each is taken out just before its turn: one may remove another, or enter one that is due at
/// once, which waits for the next turn of the loop.
void QtClock::actOnThoseDue() {
    const Key end(uptime(), m_nextNumber);
    const auto isAlive = m_isAlive;
    while (*isAlive && !m_due.empty() && m_due.begin()->first < end) {
        const auto action = std::move(m_due.extract(m_due.begin()).mapped());
        action();
    }
    if (*isAlive) {
        startTimer();
    }
}

/// For what is due first. What is due later than a timer can run is looked at again.
void QtClock::startTimer() {
    constexpr std::chrono::milliseconds kLongestTimer = std::chrono::hours(24 * 24);
    if (m_due.empty()) {
        m_timer.stop();
        return;
    }
    const auto end = m_due.begin()->first.first;
    if (m_timer.isActive() && m_timerEnd == end) {
        return;
    }
    m_timerEnd = end;
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - uptime());
    m_timer.start(std::clamp(rest, std::chrono::milliseconds(0), kLongestTimer));
}

} // namespace brimlet
