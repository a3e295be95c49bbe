#include "platform/qt/qtclock.h"

#include "platform/deferred.h"

#include <algorithm>

namespace brimlet {

std::chrono::nanoseconds nextTick(std::chrono::nanoseconds due, std::chrono::nanoseconds interval,
                                  std::chrono::nanoseconds now) {
    const auto missed = std::max<std::chrono::nanoseconds::rep>((now - due) / interval, 0);
    return due + (missed + 1) * interval;
}

/// An action of a QtClock that schedules itself again at each tick. Ticks that were missed are made
/// up by one late tick.
class QtRepeatingTimer final : public RepeatingTimer {
public:
    QtRepeatingTimer(QtClock& clock, std::chrono::nanoseconds interval, std::function<void()> tick)
        : m_clock(clock)
        , m_isClockAlive(clock.m_isAlive)
        , m_interval(interval)
        , m_tick(std::make_shared<std::function<void()>>(std::move(tick))) {
        schedule(clock.uptime() + interval);
    }
    ~QtRepeatingTimer() override {
        if (*m_isClockAlive) {
            m_clock.remove(m_key);
        }
    }
    QtRepeatingTimer(const QtRepeatingTimer&) = delete;
    QtRepeatingTimer& operator=(const QtRepeatingTimer&) = delete;

private:
    void schedule(std::chrono::nanoseconds due) {
        m_key = m_clock.schedule(due, [this] { onDue(); });
    }
    void onDue() {
        schedule(nextTick(m_key.first, m_interval, m_clock.uptime()));
        const auto tick = m_tick; // kept alive, since the call may destroy this timer
        (*tick)();
    }

    QtClock& m_clock;
    std::shared_ptr<const bool> m_isClockAlive;
    std::chrono::nanoseconds m_interval;
    std::shared_ptr<std::function<void()>> m_tick;
    QtClock::Key m_key;
};

std::unique_ptr<RepeatingTimer> QtClock::repeat(std::chrono::nanoseconds interval,
                                                std::function<void()> tick) {
    return std::make_unique<QtRepeatingTimer>(*this, interval, std::move(tick));
}

QCoro::Task<> QtClock::sleep(std::chrono::nanoseconds duration, std::stop_token stop) {
    const Deferred<bool> wake;
    // A century, which keeps the sum below far from overflow.
    constexpr std::chrono::nanoseconds kLongest = std::chrono::hours(100 * 365 * 24);
    const Key key = schedule(uptime() + std::clamp(duration, std::chrono::nanoseconds(0), kLongest),
                             [wake] { wake.resolve(true); });
    const std::stop_callback onStop(stop, [wake] { wake.resolve(false); });
    const auto isAlive = m_isAlive;
    const bool isOver = co_await wake;
    if (!isOver && *isAlive) {
        remove(key); // a no-op if the sleep was stopped just as it became due
    }
}

QtClock::Key QtClock::schedule(std::chrono::nanoseconds due, std::function<void()> action) {
    const Key key(due, m_nextNumber++);
    m_actions.emplace(key, std::move(action));
    startTimer();
    return key;
}

void QtClock::remove(const Key& key) {
    m_actions.erase(key);
    startTimer();
}

void QtClock::timerEvent(QTimerEvent* /*event*/) {
    m_timerDue.reset();
    runDueActions();
}

/// Each action is removed from the map before it runs, because it may remove others or destroy the
/// clock. Actions scheduled meanwhile wait for the next turn of the event loop.
void QtClock::runDueActions() {
    const Key end(uptime(), m_nextNumber);
    const auto isAlive = m_isAlive;
    while (*isAlive && !m_actions.empty() && m_actions.begin()->first < end) {
        const auto action = std::move(m_actions.extract(m_actions.begin()).mapped());
        action();
    }
    if (*isAlive) {
        startTimer();
    }
}

/// Starts the timer for the first action. One that is due later than the longest timer is handled
/// by starting the timer again when it ends.
void QtClock::startTimer() {
    constexpr std::chrono::milliseconds kLongestTimer = std::chrono::hours(24 * 24);
    if (m_actions.empty()) {
        m_timer.stop();
        m_timerDue.reset();
        return;
    }
    const auto due = m_actions.begin()->first.first;
    if (m_timerDue == due) {
        return;
    }
    m_timerDue = due;
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(due - uptime());
    // Coarse timers would drift apart, and precise ones wake the program no more often.
    m_timer.start(
        static_cast<int>(std::clamp(rest, std::chrono::milliseconds(0), kLongestTimer).count()),
        Qt::PreciseTimer, this);
}

} // namespace brimlet
