#pragma once

#include "platform/wayland/waylandproxies.h"

#include <QObject>
#include <QPointF>

#include <cstdint>
#include <memory>
#include <optional>

Q_DECLARE_OPAQUE_POINTER(wl_surface*)

namespace brimlet {

class WaylandConnection;
class WaylandCursor;

/// The pointer and touch screen of the connection's seat. Main thread only.
class WaylandSeat final : public QObject {
    Q_OBJECT

public:
    /// The connection outlives it.
    explicit WaylandSeat(WaylandConnection& connection);
    ~WaylandSeat() override;

    /// Shows this cursor until the pointer leaves its surface.
    void showCursor(Qt::CursorShape shape, double scale);

    /// The number of the present press or touch, by which the compositor recognises it; still there
    /// while its end is signalled.
    [[nodiscard]] std::optional<std::uint32_t> lastPress() const { return m_lastPress; }

    // The compositor's events.
    void enter(std::uint32_t serial, wl_surface* surface, QPointF position);
    void leave();
    void press(std::uint32_t serial, bool isPressed);
    void endTouch();

Q_SIGNALS:
    // Positions are in points of the surface that the pointer or finger is on.
    void entered(wl_surface* surface, QPointF position);
    void moved(QPointF position);
    void left();
    /// The left button.
    void pressed();
    void released();
    /// One finger: others are ignored while it is there.
    void touched(wl_surface* surface, QPointF position);
    void touchMoved(QPointF position);
    void touchEnded();
    void touchCancelled();

private:
    void bindSeat();
    void setCapabilities(std::uint32_t capabilities);
    void bindPointer();
    void bindTouch();
    void release();
    void releasePointer();
    void releaseTouch();

    WaylandConnection& m_connection;
    Proxy<wl_pointer> m_pointer;
    Proxy<wl_touch> m_touch;
    std::unique_ptr<WaylandCursor> m_cursor;
    std::optional<std::uint32_t> m_entered; ///< The arrival's number while it is on a surface.
    std::optional<std::uint32_t> m_lastPress;
    std::optional<std::int32_t> m_finger;
};

} // namespace brimlet
