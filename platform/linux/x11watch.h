#pragma once

#include "platform/linux/xcbowners.h"

#include <cstdint>

#include <xcb/xcb.h>

namespace brimlet {

/// Tracks the stacking order of windows and the compositor on the X screen. The events arrive on a
/// separate X connection that the event loop does not watch, so windows being moved about do not
/// wake this program: events stay queued until the next call. When that connection fails, every
/// call reports a change. Main thread only.
class X11Watch final {
public:
    /// The process's only instance, which receives events from the first call on. Needs the
    /// application object.
    [[nodiscard]] static X11Watch& shared();

    X11Watch(const X11Watch&) = delete;
    X11Watch& operator=(const X11Watch&) = delete;

    /// `drainEvents()` if the instance was used before; else does nothing.
    static void drainIfUsed();

    /// Reads the queued events. Call it every few seconds, because the X server buffers unread
    /// events. Sends no request to the X server.
    void drainEvents();

    /// A number that changes whenever a window is shown, moved, resized or restacked, also one of
    /// this program. Drains the events.
    [[nodiscard]] std::uint64_t stackingSerial();
    /// Whether a compositor runs, which blends transparent windows with what is behind them.
    [[nodiscard]] bool hasCompositor();

private:
    X11Watch();
    static bool s_isUsed;
    void handleEvent(const xcb_generic_event_t& event);

    XcbConnection m_connection;
    std::uint8_t m_firstFixesEvent = 0;
    std::uint64_t m_stackingSerial = 0;
    bool m_hasCompositor = true;
};

} // namespace brimlet
