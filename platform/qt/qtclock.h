#pragma once

#include "platform/clock.h"
#include "platform/qt/awaketime.h"

#include <QTimer>

#include <cstdint>
#include <map>
#include <utility>

namespace brimlet {

/// The uptime of a repeating timer's tick after the one that was `due` and runs `now`: the next
/// multiple of the interval, so that a late tick does not shift those that follow.
[[nodiscard]] std::chrono::nanoseconds nextTick(std::chrono::nanoseconds due,
                                                std::chrono::nanoseconds interval,
                                                std::chrono::nanoseconds now);

/// The system's clocks, with timers on the Qt event loop. All timers and sleeps share one QTimer,
/// so those that are due together wake the program only once. Main thread only.
class QtClock final : public Clock {
public:
    QtClock();
    /// Existing timers stop ticking, and pending sleeps end only through their stop token.
    ~QtClock() override { *m_isAlive = false; }
    QtClock(const QtClock&) = delete;
    QtClock& operator=(const QtClock&) = delete;

    [[nodiscard]] TimePoint now() const override { return std::chrono::system_clock::now(); }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return awakeTime(); }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::milliseconds interval,
                                                         std::function<void()> tick) override;
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                      std::stop_token stop) override;

private:
    friend class QtRepeatingTimer;

    /// The uptime at which an action is due, and a number that makes the key unique.
    using Key = std::pair<std::chrono::nanoseconds, std::uint64_t>;

    [[nodiscard]] Key schedule(std::chrono::nanoseconds due, std::function<void()> action);
    void remove(const Key& key);
    void runDueActions();
    void startTimer();

    std::map<Key, std::function<void()>> m_actions;
    std::uint64_t m_nextNumber = 0;
    std::chrono::nanoseconds m_timerDue{}; ///< The uptime for which `m_timer` was started.
    QTimer m_timer;
    std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true);
};

} // namespace brimlet
