#include "bench/paintcounter.h"

#include "bench/desktop.h"
#include "tests/support/failure.h"

#include <utility>

#include <poll.h>

namespace brimlet {

PaintCounter::PaintCounter(const Desktop& desktop, xcb_window_t window)
    : m_connection(desktop.connection())
    , m_damage(xcb_generate_id(m_connection)) {
    const auto* const extension = xcb_get_extension_data(m_connection, &xcb_damage_id);
    const XcbReply<xcb_damage_query_version_reply_t> version(xcb_damage_query_version_reply(
        m_connection, xcb_damage_query_version(m_connection, 1, 1), nullptr));
    if (extension == nullptr || extension->present == 0 || !version) {
        throw Failure("the X server has no DAMAGE extension, so paints cannot be counted");
    }
    m_firstEvent = extension->first_event;
    // At this level every drawing is reported and nothing has to be taken back.
    const auto created = xcb_damage_create_checked(m_connection, m_damage, window,
                                                   XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    if (const XcbReply<xcb_generic_error_t> error{xcb_request_check(m_connection, created)}) {
        throw Failure("the overlay's window cannot be watched");
    }
}

PaintCounter::~PaintCounter() {
    xcb_damage_destroy(m_connection, m_damage);
    xcb_flush(m_connection);
}

Paints PaintCounter::take() {
    drain();
    return std::exchange(m_paints, {});
}

std::optional<std::chrono::steady_clock::time_point>
PaintCounter::waitForPaint(std::chrono::milliseconds time) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + time;
    for (drain(); m_paints.count == 0; drain()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) {
            return std::nullopt;
        }
        pollfd events{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        ::poll(&events, 1, static_cast<int>(left.count()));
    }
    return Clock::now();
}

void PaintCounter::drain() {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        if ((event->response_type & 0x7f) == m_firstEvent + XCB_DAMAGE_NOTIFY) {
            const auto* const notice =
                reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
            if (notice->damage == m_damage) {
                add(*notice);
            }
        }
    }
}

void PaintCounter::add(const xcb_damage_notify_event_t& rectangle) {
    constexpr xcb_timestamp_t kSamePaint = 2;
    if (rectangle.timestamp - m_lastTime > kSamePaint) {
        ++m_paints.count;
    }
    m_lastTime = rectangle.timestamp;
}

} // namespace brimlet
