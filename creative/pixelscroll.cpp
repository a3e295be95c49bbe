#include "creative/pixelscroll.h"

#include <algorithm>
#include <cmath>

namespace brimlet {

int PixelScroll::allPixels() const {
    return static_cast<int>(std::lround(m_distance * m_devicePixelRatio));
}

std::chrono::nanoseconds PixelScroll::timeOf(int pixel) const {
    // The last pixel may be rounded up, beyond the distance.
    const double points = std::min(pixel / m_devicePixelRatio, m_distance);
    return std::chrono::nanoseconds(std::llround(points / m_speed * 1e9));
}

int PixelScroll::pixels() const {
    const int all = allPixels();
    if (all == 0 || m_elapsed >= timeOf(all)) {
        return all;
    }
    const std::chrono::duration<double> seconds = m_elapsed;
    const int pixel = static_cast<int>(seconds.count() * m_speed * m_devicePixelRatio);
    // Exactly at a pixel's time the product may be rounded down to the pixel before.
    return pixel + (m_elapsed >= timeOf(pixel + 1) ? 1 : 0);
}

void PixelScroll::start(double distance, double speed) {
    reset();
    m_distance = distance;
    m_speed = speed;
    m_start = m_clock.uptime();
    run();
}

void PixelScroll::reset() {
    m_timer.reset();
    m_distance = 0;
    m_elapsed = {};
}

bool PixelScroll::catchUp() {
    if (m_distance == 0) {
        return false;
    }
    const int before = pixels();
    // The intervals between the ticks are rounded down to nanoseconds, so one that is exactly on
    // time comes before its pixel.
    constexpr std::chrono::microseconds kTolerance(10);
    m_elapsed = m_clock.uptime() - m_start + kTolerance;
    return pixels() != before;
}

void PixelScroll::setDevicePixelRatio(double ratio) {
    m_devicePixelRatio = ratio;
    catchUp();
    run();
}

void PixelScroll::run() {
    m_timer.reset();
    if (pixels() == allPixels()) {
        return;
    }
    // The last pixel may be due sooner than the others.
    const std::chrono::nanoseconds pixel(static_cast<qint64>(1e9 / (m_speed * m_devicePixelRatio)));
    const auto interval = std::min(pixel, timeOf(allPixels()) - m_elapsed);
    m_timer = m_clock.repeat(interval, [this, interval] {
        const bool hasMoved = catchUp();
        if (timeOf(allPixels()) - m_elapsed < interval) {
            run();
        }
        if (hasMoved) {
            m_moved(); // may destroy this
        }
    });
}

} // namespace brimlet
