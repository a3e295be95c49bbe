#pragma once

#include "platform/clock.h"
#include "platform/qt/awaketime.h"

#include <QTimer>

#include <cstdint>
#include <map>
#include <utility>

namespace brimlet {

/// The system's clocks, with timers on the Qt event loop. All timers and sleeps share one timer of
/// Qt's, so that those that are due together wake the program once, and any number of them costs
/// little.
class QtClock final : public Clock {
public:
    QtClock();
    /// Timers tick no more then, and sleeps under way never end of themselves; they may still be
    /// stopped.
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

    /// The uptime at which something is due, and a number of its own.
    using Key = std::pair<std::chrono::nanoseconds, std::uint64_t>;

    [[nodiscard]] Key enter(std::chrono::nanoseconds due, std::function<void()> action);
    void remove(const Key& key);
    void actOnThoseDue();
    void startTimer();

    std::map<Key, std::function<void()>> m_due;
    std::uint64_t m_nextNumber = 0;
    std::chrono::nanoseconds m_timerEnd{}; ///< When the timer that runs will end.
    QTimer m_timer;
    std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true);
};

} // namespace brimlet
