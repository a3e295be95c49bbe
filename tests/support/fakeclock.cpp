#include "tests/support/fakeclock.h"

#include <algorithm>

namespace brimlet {

/// Removes its timer from the clock, unless the clock was destroyed first.
class FakeClock::Handle final : public RepeatingTimer {
public:
    Handle(FakeClock& clock, int id)
        : m_clock(clock)
        , m_isClockAlive(clock.m_isAlive)
        , m_id(id) {}
    ~Handle() override {
        if (*m_isClockAlive) {
            m_clock.m_entries.erase(m_id);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

private:
    FakeClock& m_clock;
    std::shared_ptr<bool> m_isClockAlive;
    int m_id;
};

FakeClock::~FakeClock() {
    for (const auto& sleeper : std::exchange(m_sleepers, {})) {
        sleeper.resolve(false);
    }
    *m_isAlive = false;
    // Destroying a tick may destroy the owner of its timer, whose handle must not use m_entries.
    const auto entries = std::exchange(m_entries, {});
}

std::unique_ptr<RepeatingTimer> FakeClock::repeat(std::chrono::nanoseconds interval,
                                                  std::function<void()> tick) {
    const int id = m_nextId++;
    m_entries[id] = {m_monotonic + interval, interval, std::move(tick)};
    return std::make_unique<Handle>(*this, id);
}

void FakeClock::after(std::chrono::nanoseconds delay, std::function<void()> action) {
    m_entries[m_nextId++] = {m_monotonic + delay, {}, std::move(action)};
}

QCoro::Task<> FakeClock::sleep(std::chrono::nanoseconds duration, std::stop_token stop) {
    const Deferred<bool> wake;
    m_sleepers.push_back(wake);
    after(duration, [wake] { wake.resolve(true); });
    const std::stop_callback onStop(stop, [wake] { wake.resolve(false); });
    co_await wake;
}

int FakeClock::runningTimers() const {
    return static_cast<int>(
        std::count_if(m_entries.begin(), m_entries.end(),
                      [](const auto& entry) { return entry.second.interval.count() != 0; }));
}

int FakeClock::runningSleeps() const {
    return static_cast<int>(
        std::count_if(m_sleepers.begin(), m_sleepers.end(),
                      [](const auto& sleeper) { return !sleeper.isResolved(); }));
}

void FakeClock::step(std::chrono::nanoseconds target) {
    m_wall += toWall(target - m_monotonic);
    m_monotonic = target;
}

void FakeClock::advance(std::chrono::nanoseconds duration) {
    const auto end = m_monotonic + duration;
    while (true) {
        const auto next =
            std::min_element(m_entries.begin(), m_entries.end(), [](const auto& a, const auto& b) {
                return a.second.due < b.second.due;
            });
        if (next == m_entries.end() || next->second.due > end) {
            break;
        }
        step(next->second.due);
        const auto action = next->second.action;
        if (next->second.interval.count() == 0) {
            m_entries.erase(next);
        } else {
            next->second.due += next->second.interval;
        }
        action();
    }
    step(end);
    std::erase_if(m_sleepers, [](const auto& sleeper) { return sleeper.isResolved(); });
}

} // namespace brimlet
