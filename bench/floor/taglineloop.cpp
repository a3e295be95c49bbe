#include "bench/floor/taglineloop.h"

#include <algorithm>

namespace brimlet {
namespace {

using namespace std::chrono_literals;

constexpr int kPixelsPerSecond = 22;
constexpr auto kBrand = 16s;

/// From the start of a scroll; rounded up, so that the pixel is found to be due then.
std::chrono::nanoseconds timeOf(int pixel) {
    return (std::chrono::nanoseconds(1s) * pixel + 21ns) / kPixelsPerSecond;
}

} // namespace

void TaglineLoop::start(Time now, bool hasTagline, int overflow) {
    m_overflow = overflow;
    m_pixel = 0;
    enter(Stage::Brand, now, kBrand);
    if (!hasTagline) {
        m_due = Time::max();
    }
}

bool TaglineLoop::advance(Time now) {
    const bool wasTagline = showsTagline();
    const int pixelBefore = m_pixel;
    while (m_due <= now) {
        if (m_stage == Stage::Scrolling && m_pixel < m_overflow) {
            scroll(now);
        } else {
            next();
        }
    }
    return wasTagline != showsTagline() || pixelBefore != m_pixel;
}

/// The time is counted from when the stage was due, so that nothing drifts.
void TaglineLoop::enter(Stage stage, Time since, std::chrono::nanoseconds length) {
    m_stage = stage;
    m_since = since;
    m_due = since + length;
}

void TaglineLoop::next() {
    m_pixel = 0;
    switch (m_stage) {
    case Stage::Brand:
        enter(Stage::Held, m_due, 1600ms);
        break;
    case Stage::Held:
        if (m_overflow > 1) {
            enter(Stage::Scrolling, m_due, timeOf(1));
        } else {
            enter(Stage::Fitting, m_due, 2800ms);
        }
        break;
    case Stage::Scrolling:
        enter(Stage::Back, m_due, 350ms);
        break;
    case Stage::Fitting:
    case Stage::Back:
        enter(Stage::Brand, m_due, kBrand);
        break;
    }
}

/// To the pixel of the moment; the next one is due on the dot, however late this one came.
void TaglineLoop::scroll(Time now) {
    const auto pixel = static_cast<int>((now - m_since) * kPixelsPerSecond / 1s);
    m_pixel = std::clamp(pixel, m_pixel, m_overflow);
    m_due = m_since + (m_pixel < m_overflow ? timeOf(m_pixel + 1) : timeOf(m_overflow) + 1400ms);
}

} // namespace brimlet
