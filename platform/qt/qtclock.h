#pragma once

#include "platform/clock.h"
#include "platform/deferred.h"

#include <QTimer>

#include <map>
#include <utility>

namespace brimlet {

/// The system's clocks, with timers on the Qt event loop. All sleeps share one timer, so that those
/// that end together wake the program once.
class QtClock final : public Clock {
public:
    QtClock();
    /// Sleeps under way never end of themselves then; they may still be stopped.
    ~QtClock() override { *m_isAlive = false; }
    QtClock(const QtClock&) = delete;
    QtClock& operator=(const QtClock&) = delete;

    [[nodiscard]] TimePoint now() const override { return std::chrono::system_clock::now(); }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override {
        return std::chrono::steady_clock::now().time_since_epoch();
    }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::milliseconds interval,
                                                         std::function<void()> tick) override;
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                      std::stop_token stop) override;

private:
    void wakeThoseDue();
    void startTimer();

    /// By the uptime at which they end, and a number of their own.
    std::map<std::pair<std::chrono::nanoseconds, int>, Deferred<bool>> m_sleepers;
    int m_nextNumber = 0;
    QTimer m_timer;
    std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true);
};

} // namespace brimlet
