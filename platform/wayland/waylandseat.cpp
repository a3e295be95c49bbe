#include "platform/wayland/waylandseat.h"

#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandcursor.h"
#include "platform/wayland/waylandprotocols.h"

namespace brimlet {
namespace {

constexpr std::uint32_t kLeftButton = 0x110; // BTN_LEFT of the kernel's input events

QPointF toPoint(wl_fixed_t x, wl_fixed_t y) {
    return {wl_fixed_to_double(x), wl_fixed_to_double(y)};
}

WaylandSeat& seat(void* data) {
    return *static_cast<WaylandSeat*>(data);
}

/// Made in steps: newer versions of the header have more members.
const wl_pointer_listener& pointerListener() {
    static const wl_pointer_listener listener = [] {
        wl_pointer_listener events{};
        events.enter = [](void* data, wl_pointer*, std::uint32_t serial, wl_surface* surface,
                          wl_fixed_t x,
                          wl_fixed_t y) { seat(data).enter(serial, surface, toPoint(x, y)); };
        events.leave = [](void* data, wl_pointer*, std::uint32_t, wl_surface*) {
            seat(data).leave();
        };
        events.motion = [](void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
            Q_EMIT seat(data).moved(toPoint(x, y));
        };
        events.button = [](void* data, wl_pointer*, std::uint32_t serial, std::uint32_t,
                           std::uint32_t button, std::uint32_t state) {
            if (button == kLeftButton) {
                seat(data).press(serial, state == WL_POINTER_BUTTON_STATE_PRESSED);
            }
        };
        events.axis = kIgnoreEvent;
        events.frame = kIgnoreEvent;
        events.axis_source = kIgnoreEvent;
        events.axis_stop = kIgnoreEvent;
        events.axis_discrete = kIgnoreEvent;
        return events;
    }();
    return listener;
}

} // namespace

WaylandSeat::WaylandSeat(WaylandConnection& connection)
    : m_connection(connection) {
    connect(&connection, &WaylandConnection::seatChanged, this, &WaylandSeat::bindSeat);
    connect(&connection, &WaylandConnection::lost, this, &WaylandSeat::release);
    bindSeat();
}

WaylandSeat::~WaylandSeat() = default;

void WaylandSeat::enter(std::uint32_t serial, wl_surface* surface, QPointF position) {
    m_entered = serial;
    Q_EMIT entered(surface, position);
}

void WaylandSeat::leave() {
    m_entered.reset();
    m_cursor->unload();
    Q_EMIT left();
}

void WaylandSeat::endTouch() {
    Q_EMIT touchEnded();
    m_lastPress.reset();
}

void WaylandSeat::press(std::uint32_t serial, bool isPressed) {
    if (isPressed) {
        m_lastPress = serial;
        Q_EMIT pressed();
    } else {
        Q_EMIT released(); // a click, which may ask for the press
        m_lastPress.reset();
    }
}

void WaylandSeat::release() {
    releasePointer();
    releaseTouch();
    m_lastPress.reset();
}

void WaylandSeat::releasePointer() {
    m_cursor.reset();
    m_pointer.reset();
    if (m_entered) {
        m_entered.reset();
        Q_EMIT left();
    }
}

void WaylandSeat::releaseTouch() {
    m_touch.reset();
    if (m_finger) {
        m_finger.reset();
        Q_EMIT touchCancelled();
    }
}

void WaylandSeat::bindSeat() {
    release();
    wl_seat* const proxy = m_connection.globals().seat.get();
    if (proxy == nullptr) {
        return;
    }
    static constexpr wl_seat_listener kSeat{
        .capabilities =
            [](void* data, wl_seat*, std::uint32_t capabilities) {
                seat(data).setCapabilities(capabilities);
            },
        .name = kIgnoreEvent};
    wl_seat_add_listener(proxy, &kSeat, this);
}

void WaylandSeat::setCapabilities(std::uint32_t capabilities) {
    const bool hasPointer = (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
    const bool hasTouch = (capabilities & WL_SEAT_CAPABILITY_TOUCH) != 0;
    if (hasPointer && !m_pointer) {
        bindPointer();
    } else if (!hasPointer && m_pointer) {
        releasePointer();
    }
    if (hasTouch && !m_touch) {
        bindTouch();
    } else if (!hasTouch && m_touch) {
        releaseTouch();
    }
}

void WaylandSeat::bindPointer() {
    m_pointer.reset(wl_seat_get_pointer(m_connection.globals().seat.get()));
    m_cursor = std::make_unique<WaylandCursor>(m_connection, m_pointer.get());
    wl_pointer_add_listener(m_pointer.get(), &pointerListener(), this);
}

void WaylandSeat::bindTouch() {
    m_touch.reset(wl_seat_get_touch(m_connection.globals().seat.get()));
    static constexpr wl_touch_listener kTouch{
        .down =
            [](void* data, wl_touch*, std::uint32_t serial, std::uint32_t, wl_surface* surface,
               std::int32_t finger, wl_fixed_t x, wl_fixed_t y) {
                if (!seat(data).m_finger) {
                    seat(data).m_finger = finger;
                    seat(data).m_lastPress = serial;
                    Q_EMIT seat(data).touched(surface, toPoint(x, y));
                }
            },
        .up =
            [](void* data, wl_touch*, std::uint32_t, std::uint32_t, std::int32_t finger) {
                if (seat(data).m_finger == finger) {
                    seat(data).m_finger.reset();
                    seat(data).endTouch();
                }
            },
        .motion =
            [](void* data, wl_touch*, std::uint32_t, std::int32_t finger, wl_fixed_t x,
               wl_fixed_t y) {
                if (seat(data).m_finger == finger) {
                    Q_EMIT seat(data).touchMoved(toPoint(x, y));
                }
            },
        .frame = kIgnoreEvent,
        .cancel =
            [](void* data, wl_touch*) {
                if (seat(data).m_finger) {
                    seat(data).m_finger.reset();
                    Q_EMIT seat(data).touchCancelled();
                }
            },
        .shape = kIgnoreEvent,
        .orientation = kIgnoreEvent};
    wl_touch_add_listener(m_touch.get(), &kTouch, this);
}

void WaylandSeat::showCursor(Qt::CursorShape shape, double scale) {
    if (m_entered && m_cursor) {
        m_cursor->show(*m_entered, shape, scale);
    }
}

} // namespace brimlet
