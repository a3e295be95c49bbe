#pragma once

#include <chrono>
#include <cstdint>

#include <xcb/damage.h>

namespace brimlet {

class Desktop;

struct Paints final {
    std::int64_t count = 0;
    std::int64_t pixels = 0; ///< What they covered, in sum.
};

/// Counts from outside how often a window is painted: the X server reports each rectangle that
/// anybody draws in it. Rectangles that come within two milliseconds are one paint.
class PaintCounter final {
public:
    /// The desktop outlives the counter, whose events nobody else reads.
    PaintCounter(const Desktop& desktop, xcb_window_t window);
    ~PaintCounter();
    PaintCounter(const PaintCounter&) = delete;
    PaintCounter& operator=(const PaintCounter&) = delete;

    /// Lets time pass and counts meanwhile.
    [[nodiscard]] Paints watch(std::chrono::milliseconds time);

private:
    void add(const xcb_damage_notify_event_t& rectangle, Paints& paints);
    void drain(Paints& paints);

    xcb_connection_t* m_connection;
    xcb_damage_damage_t m_damage;
    std::uint8_t m_firstEvent = 0;
    xcb_timestamp_t m_lastTime = 0;
};

} // namespace brimlet
