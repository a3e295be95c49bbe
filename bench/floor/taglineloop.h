#pragma once

#include <algorithm>
#include <chrono>

namespace brimlet {

/// When a capsule's line shows what: the brand, after 16 s the tagline, which scrolls by whole
/// pixels, 22 a second, when it is too long.
class TaglineLoop final {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Begins with the brand. `overflow`: by how many pixels the tagline is wider than its line.
    void start(Time now, bool hasTagline, int overflow) {
        m_overflow = overflow;
        m_pixel = 0;
        enter(Phase::Brand, now, kBrand);
        if (!hasTagline) {
            m_due = Time::max();
        }
    }
    /// Moves on to this time; true when this changes what is shown.
    [[nodiscard]] bool advance(Time now) {
        const bool wasTagline = showsTagline();
        const int pixelBefore = m_pixel;
        while (m_due <= now) {
            if (m_phase == Phase::Scrolling && m_pixel < m_overflow) {
                scroll(now);
            } else {
                next();
            }
        }
        return wasTagline != showsTagline() || pixelBefore != m_pixel;
    }
    /// When to advance next.
    [[nodiscard]] Time due() const { return m_due; }
    [[nodiscard]] bool showsTagline() const { return m_phase != Phase::Brand; }
    /// How far the text is scrolled.
    [[nodiscard]] int pixel() const { return m_pixel; }

private:
    enum class Phase { Brand, Held, Scrolling, Fitting, Back };

    static constexpr int kPixelsPerSecond = 22;
    static constexpr std::chrono::seconds kBrand{16};

    /// From the start of a scroll; rounded up, so that the pixel is due at that time.
    [[nodiscard]] static std::chrono::nanoseconds timeOf(int pixel) {
        using namespace std::chrono_literals;
        return (std::chrono::nanoseconds(1s) * pixel + 21ns) / kPixelsPerSecond;
    }
    /// `since` is when the phase was due, so that nothing drifts.
    void enter(Phase phase, Time since, std::chrono::nanoseconds length) {
        m_phase = phase;
        m_since = since;
        m_due = since + length;
    }
    void next() {
        using namespace std::chrono_literals;
        m_pixel = 0;
        switch (m_phase) {
        case Phase::Brand:
            return enter(Phase::Held, m_due, 1600ms);
        case Phase::Held:
            return m_overflow > 1 ? enter(Phase::Scrolling, m_due, timeOf(1))
                                  : enter(Phase::Fitting, m_due, 2800ms);
        case Phase::Scrolling:
            return enter(Phase::Back, m_due, 350ms);
        case Phase::Fitting:
        case Phase::Back:
            return enter(Phase::Brand, m_due, kBrand);
        }
    }
    /// To the pixel of this time. The next one is due in time, however late this one is.
    void scroll(Time now) {
        using namespace std::chrono_literals;
        const auto pixel = static_cast<int>((now - m_since) * kPixelsPerSecond / 1s);
        m_pixel = std::clamp(pixel, m_pixel, m_overflow);
        m_due =
            m_since + (m_pixel < m_overflow ? timeOf(m_pixel + 1) : timeOf(m_overflow) + 1400ms);
    }

    Phase m_phase = Phase::Brand;
    Time m_since;
    Time m_due = Time::max();
    int m_overflow = 0;
    int m_pixel = 0;
};

} // namespace brimlet
