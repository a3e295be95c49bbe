#pragma once

#include "platform/clock.h"

namespace brimlet {

/// Moves evenly over a distance in steps of one pixel, and wakes once for each. After a late
/// wake-up the step is larger. Main thread only.
class PixelScroll final {
public:
    /// `moved` is called after each step. `clock` outlives the scroll.
    PixelScroll(Clock& clock, std::function<void()> moved)
        : m_clock(clock)
        , m_moved(std::move(moved)) {}
    ~PixelScroll() = default;
    PixelScroll(const PixelScroll&) = delete;
    PixelScroll& operator=(const PixelScroll&) = delete;

    /// Starts from 0. `distance` in points, `speed` in points per second, more than 0.
    void start(double distance, double speed);
    /// Ends the scroll and goes back to 0 at once.
    void reset();

    /// Pixels per point. Advances to the position at this time without calling `moved`.
    void setDevicePixelRatio(double ratio);
    /// Advances to the position at this time without calling `moved`; returns whether it moved.
    bool catchUp();
    /// The distance covered so far, in pixels.
    [[nodiscard]] int pixels() const;

private:
    void run();
    [[nodiscard]] int allPixels() const;
    /// The time from the start until this pixel is reached.
    [[nodiscard]] std::chrono::nanoseconds timeOf(int pixel) const;

    Clock& m_clock;
    std::function<void()> m_moved;
    double m_devicePixelRatio = 1;
    double m_distance = 0;              ///< Points.
    double m_speed = 0;                 ///< Points per second.
    std::chrono::nanoseconds m_start{}; ///< The clock's uptime at the start.
    std::chrono::nanoseconds m_elapsed{};
    std::unique_ptr<RepeatingTimer> m_timer; ///< While it moves.
};

} // namespace brimlet
