#include "creative/pixelscroll.h"

#include "platform/starttask.h"

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
    m_stop = std::stop_source();
    m_start = m_clock.uptime();
    startTask(run(m_stop.get_token()));
}

void PixelScroll::reset() {
    m_stop.request_stop();
    m_distance = 0;
    m_elapsed = {};
}

bool PixelScroll::catchUp() {
    if (m_distance == 0) {
        return false;
    }
    const int before = pixels();
    m_elapsed = m_clock.uptime() - m_start;
    return pixels() != before;
}

QCoro::Task<> PixelScroll::run(std::stop_token stop) {
    while (pixels() < allPixels()) {
        const auto due = m_start + timeOf(pixels() + 1);
        co_await m_clock.sleep(due - m_clock.uptime(), stop);
        if (stop.stop_requested()) {
            co_return;
        }
        if (catchUp()) {
            m_moved();
        }
    }
}

} // namespace brimlet
