#pragma once

#include "platform/clock.h"
#include "platform/qt/awaketime.h"

#include <QBasicTimer>
#include <QObject>

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace brimlet {

/// The uptime of a repeating timer's tick after the one that was `due` and runs `now`: the next
/// multiple of the interval, so that a late tick does not shift those that follow.
[[nodiscard]] std::chrono::nanoseconds nextTick(std::chrono::nanoseconds due,
                                                std::chrono::nanoseconds interval,
                                                std::chrono::nanoseconds now);

/// The system's clocks, with timers on the Qt event loop. All timers and sleeps share one of Qt's,
/// so those that are due together wake the program only once. Main thread only.
class QtClock final : public QObject, public Clock {
public:
    QtClock() = default;
    /// Existing timers stop ticking, and pending sleeps end only through their stop token.
    ~QtClock() override { *m_isAlive = false; }
    QtClock(const QtClock&) = delete;
    QtClock& operator=(const QtClock&) = delete;

    [[nodiscard]] TimePoint now() const override { return std::chrono::system_clock::now(); }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return awakeTime(); }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::nanoseconds interval,
                                                         std::function<void()> tick) override;
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                      std::stop_token stop) override;

protected:
    void timerEvent(QTimerEvent* event) override;

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
    /// The uptime for which `m_timer` was started, until it comes.
    std::optional<std::chrono::nanoseconds> m_timerDue;
    QBasicTimer m_timer;
    std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true);
};

} // namespace brimlet
