#pragma once

#include "platform/clock.h"
#include "platform/deferred.h"

#include <map>
#include <vector>

namespace brimlet {

/// A clock that moves only when a test moves it. `advance` moves wall-clock and monotonic time,
/// `jump` only the wall clock. The destructor ends all sleeps.
class FakeClock final : public Clock {
public:
    FakeClock() = default;
    ~FakeClock() override;
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;

    [[nodiscard]] TimePoint now() const override {
        ++readings;
        return m_wall;
    }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return m_monotonic; }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::nanoseconds interval,
                                                         std::function<void()> tick) override;
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                      std::stop_token stop) override;

    /// Advances both times and runs what becomes due, in order; a tick may start timers and sleeps.
    void advance(std::chrono::nanoseconds duration);
    void jump(std::chrono::nanoseconds duration) { m_wall += toWall(duration); }
    /// Calls `action` once after `delay`.
    void after(std::chrono::nanoseconds delay, std::function<void()> action);

    [[nodiscard]] int runningTimers() const;
    /// Sleeps that have not ended.
    [[nodiscard]] int runningSleeps() const;
    /// How often the wall clock was read.
    mutable int readings = 0;

private:
    struct Entry {
        std::chrono::nanoseconds due{};
        std::chrono::nanoseconds interval{}; ///< Zero for a single call.
        std::function<void()> action;
    };
    class Handle;

    [[nodiscard]] static TimePoint::duration toWall(std::chrono::nanoseconds duration) {
        return std::chrono::duration_cast<TimePoint::duration>(duration);
    }
    void step(std::chrono::nanoseconds target);

    TimePoint m_wall{std::chrono::seconds(1'800'000'000)};
    std::chrono::nanoseconds m_monotonic{};
    std::map<int, Entry> m_entries;
    int m_nextId = 1;
    std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true);
    std::vector<Deferred<bool>> m_sleepers;
};

} // namespace brimlet
