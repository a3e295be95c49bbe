#pragma once

#include "platform/clock.h"

namespace brimlet {

/// Moves evenly over a distance, one whole pixel of the screen at a time, and wakes only when the
/// next pixel is due. Late wake-ups are made up by larger steps. Main thread only.
class PixelScroll final {
public:
    /// `moved` is called after each step. The clock outlives the scroll.
    PixelScroll(Clock& clock, std::function<void()> moved)
        : m_clock(clock)
        , m_moved(std::move(moved)) {}
    ~PixelScroll() { m_stop.request_stop(); }
    PixelScroll(const PixelScroll&) = delete;
    PixelScroll& operator=(const PixelScroll&) = delete;

    /// Starts at no distance. `distance` in points, `speed` in points per second, more than 0.
    void start(double distance, double speed);
    /// Back to no distance at once.
    void reset();

    /// Pixels to a point, from the next step on.
    void setDevicePixelRatio(double ratio) { m_devicePixelRatio = ratio; }
    /// Moves to where it is due by now, without a word. Whether that is another pixel.
    bool catchUp();
    /// How far it has come, in pixels of the screen.
    [[nodiscard]] int pixels() const;

private:
    [[nodiscard]] QCoro::Task<> run(std::stop_token stop);
    [[nodiscard]] int allPixels() const;
    /// When it has come so far, from its start on.
    [[nodiscard]] std::chrono::nanoseconds timeOf(int pixel) const;

    Clock& m_clock;
    std::function<void()> m_moved;
    double m_devicePixelRatio = 1;
    double m_distance = 0;
    double m_speed = 0;
    std::chrono::nanoseconds m_start{}; ///< Of the clock.
    std::chrono::nanoseconds m_elapsed{};
    std::stop_source m_stop;
};

} // namespace brimlet
