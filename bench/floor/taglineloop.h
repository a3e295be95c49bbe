#pragma once

#include <chrono>

namespace brimlet {

/// When a capsule's line shows what: the brand, after 16 s the tagline, which scrolls by whole
/// pixels at 22 a second when it is too long.
class TaglineLoop final {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Begins with the brand. `overflow`: by how many pixels the tagline is wider than its line.
    void start(Time now, bool hasTagline, int overflow);
    /// Does what is due; true when something else is to be seen than before.
    [[nodiscard]] bool advance(Time now);
    /// When to advance next.
    [[nodiscard]] Time due() const { return m_due; }

    [[nodiscard]] bool showsTagline() const { return m_stage != Stage::Brand; }
    /// How far the text is scrolled.
    [[nodiscard]] int pixel() const { return m_pixel; }

private:
    enum class Stage { Brand, Held, Scrolling, Fitting, Back };

    void enter(Stage stage, Time since, std::chrono::nanoseconds length);
    void next();
    void scroll(Time now);

    Stage m_stage = Stage::Brand;
    Time m_since;
    Time m_due = Time::max();
    int m_overflow = 0;
    int m_pixel = 0;
};

} // namespace brimlet
