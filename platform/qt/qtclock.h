#pragma once

#include "platform/clock.h"

namespace brimlet {

/// The system's clocks, with timers on the Qt event loop.
class QtClock final : public Clock {
public:
    [[nodiscard]] TimePoint now() const override { return std::chrono::system_clock::now(); }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::milliseconds interval,
                                                         std::function<void()> tick) override;
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                      std::stop_token stop) override;
};

} // namespace brimlet
