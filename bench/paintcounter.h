#pragma once

#include "bench/figures.h"

#include <chrono>
#include <cstdint>
#include <optional>

#include <xcb/damage.h>

namespace brimlet {

class Desktop;

/// Counts from outside how often a window is painted: the X server reports each rectangle that
/// anybody draws in it. Rectangles that come within two milliseconds are one paint.
class PaintCounter final {
public:
    /// The desktop outlives the counter, whose events nobody else reads.
    PaintCounter(const Desktop& desktop, xcb_window_t window);
    ~PaintCounter();
    PaintCounter(const PaintCounter&) = delete;
    PaintCounter& operator=(const PaintCounter&) = delete;

    /// What has come since the last call, or since the start.
    [[nodiscard]] Paints take();

    /// Waits for the next paint after the last `take`; when it was seen, or nothing when the time
    /// is up.
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point>
    waitForPaint(std::chrono::milliseconds time);

private:
    void add(const xcb_damage_notify_event_t& rectangle);
    void drain();

    xcb_connection_t* m_connection;
    xcb_damage_damage_t m_damage;
    std::uint8_t m_firstEvent = 0;
    xcb_timestamp_t m_lastTime = 0;
    Paints m_paints;
};

} // namespace brimlet
