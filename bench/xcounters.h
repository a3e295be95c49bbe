#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

#include <poll.h>
#include <xcb/damage.h>
#include <xcb/record.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace brimlet {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, Free>;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

inline Connection connectToServer() {
    Connection connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get()) != 0) {
        throw std::runtime_error("there is no X server");
    }
    return connection;
}

/// Counts the paints of a window by the DAMAGE extension, which reports each rectangle that is
/// drawn in it. Rectangles within two milliseconds are one paint.
class PaintCounter final {
public:
    PaintCounter(xcb_connection_t* connection, xcb_window_t window)
        : m_connection(connection)
        , m_damage(xcb_generate_id(connection)) {
        const auto* const extension = xcb_get_extension_data(connection, &xcb_damage_id);
        const XcbReply<xcb_damage_query_version_reply_t> version(xcb_damage_query_version_reply(
            connection, xcb_damage_query_version(connection, 1, 1), nullptr));
        if (extension == nullptr || extension->present == 0 || !version) {
            throw std::runtime_error("the X server has no DAMAGE extension to count paints");
        }
        m_event = extension->first_event + XCB_DAMAGE_NOTIFY;
        // At this level each rectangle is reported and none has to be acknowledged.
        const auto created = xcb_damage_create_checked(connection, m_damage, window,
                                                       XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        if (const XcbReply<xcb_generic_error_t> error{xcb_request_check(connection, created)}) {
            throw std::runtime_error("the overlay's window cannot be observed");
        }
    }

    /// Reads what was reported so far, before the socket is full.
    void drain() {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            const auto* const notice =
                reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
            if ((event->response_type & 0x7f) == m_event && notice->damage == m_damage) {
                constexpr xcb_timestamp_t kSamePaint = 2;
                m_count += notice->timestamp - m_lastTime > kSamePaint ? 1 : 0;
                m_lastTime = notice->timestamp;
            }
        }
    }
    /// The paints since the last call.
    [[nodiscard]] std::int64_t take() {
        drain();
        return std::exchange(m_count, 0);
    }
    /// Waits for the next paint after the last `take`.
    [[nodiscard]] std::optional<Clock::time_point> wait(Milliseconds time) {
        const auto end = Clock::now() + time;
        for (drain(); m_count == 0; drain()) {
            const auto left = std::chrono::ceil<Milliseconds>(end - Clock::now());
            if (left.count() <= 0) {
                return std::nullopt;
            }
            pollfd events{xcb_get_file_descriptor(m_connection), POLLIN, 0};
            ::poll(&events, 1, static_cast<int>(left.count()));
        }
        return Clock::now();
    }

private:
    xcb_connection_t* m_connection;
    xcb_damage_damage_t m_damage; ///< The server frees it with the window.
    int m_event = 0;
    xcb_timestamp_t m_lastTime = 0;
    std::int64_t m_count = 0;
};

/// Counts all requests of the client that owns a window by the RECORD extension, which copies them
/// here.
class RequestCounter final {
public:
    RequestCounter(xcb_connection_t* control, xcb_window_t window)
        : m_control(control)
        , m_data(connectToServer())
        , m_context(xcb_generate_id(control)) {
        const auto* const extension = xcb_get_extension_data(control, &xcb_record_id);
        if (extension == nullptr || extension->present == 0) {
            throw std::runtime_error("the X server has no RECORD extension to count requests");
        }
        const xcb_record_client_spec_t client = window & ~xcb_get_setup(control)->resource_id_mask;
        xcb_record_range_t range{};
        range.core_requests = {1, 127};
        range.ext_requests.major = {128, 255};
        range.ext_requests.minor = {0, 0xffff};
        const auto created =
            xcb_record_create_context_checked(control, m_context, 0, 1, 1, &client, &range);
        if (const XcbReply<xcb_generic_error_t> error{xcb_request_check(control, created)}) {
            throw std::runtime_error("the program's X requests cannot be counted");
        }
        m_sequence = xcb_record_enable_context(m_data.get(), m_context).sequence;
        xcb_flush(m_data.get());
        constexpr std::uint8_t kStart = 4;
        if (const auto first = next(true); !first || first->category != kStart) {
            throw std::runtime_error("the X server does not begin to count requests");
        }
    }
    ~RequestCounter() {
        xcb_record_free_context(m_control, m_context);
        xcb_flush(m_control);
    }
    RequestCounter(const RequestCounter&) = delete;
    RequestCounter& operator=(const RequestCounter&) = delete;

    /// Reads what was copied so far, so that it does not pile up in the server.
    void drain() {
        while (const auto reply = next(false)) {
            add(*reply);
        }
    }
    [[nodiscard]] std::string finish() {
        constexpr std::uint8_t kEnd = 5;
        xcb_record_disable_context(m_control, m_context);
        xcb_flush(m_control);
        for (auto reply = next(true); reply && reply->category != kEnd; reply = next(true)) {
            add(*reply);
        }
        return std::to_string(m_count) + ' ' + std::to_string(m_bytes);
    }

private:
    using Copy = xcb_record_enable_context_reply_t;

    [[nodiscard]] XcbReply<Copy> next(bool isWaitedFor) {
        xcb_generic_error_t* error = nullptr;
        void* reply = nullptr;
        if (isWaitedFor) {
            reply = xcb_wait_for_reply(m_data.get(), m_sequence, &error);
        } else {
            xcb_poll_for_reply(m_data.get(), m_sequence, &reply, &error);
        }
        if (error != nullptr) {
            std::free(error);
            throw std::runtime_error("the X server no longer copies the program's requests");
        }
        return XcbReply<Copy>(static_cast<Copy*>(reply));
    }

    void add(const Copy& copy) {
        constexpr std::uint8_t kFromClient = 1;
        if (copy.category != kFromClient) {
            return;
        }
        std::span<const std::uint8_t> bytes(
            xcb_record_enable_context_data(&copy),
            static_cast<std::size_t>(xcb_record_enable_context_data_length(&copy)));
        m_bytes += static_cast<std::int64_t>(bytes.size());
        while (!bytes.empty()) {
            if (m_bytesLeft == 0) {
                ++m_count;
                m_bytesLeft = lengthOf(bytes);
            }
            const auto taken = std::min<std::size_t>(m_bytesLeft, bytes.size());
            m_bytesLeft -= static_cast<std::uint32_t>(taken);
            bytes = bytes.subspan(taken);
        }
    }

    /// The bytes of the request that begins here: a count of four-byte units in its second half
    /// word, or in the following word where that is zero.
    [[nodiscard]] static std::uint32_t lengthOf(std::span<const std::uint8_t> request) {
        std::uint16_t units = 0;
        std::memcpy(&units, request.data() + 2, sizeof units);
        std::uint32_t longUnits = units;
        if (units == 0 && request.size() >= 8) {
            std::memcpy(&longUnits, request.data() + 4, sizeof longUnits);
        }
        return std::max<std::uint32_t>(longUnits, 1) * 4;
    }

    xcb_connection_t* m_control;
    Connection m_data; ///< A second one: the connection that receives copies can do nothing else.
    xcb_record_context_t m_context;
    unsigned int m_sequence = 0;
    std::int64_t m_count = 0;
    std::int64_t m_bytes = 0;
    std::uint32_t m_bytesLeft = 0; ///< Of a request that goes on in the next copy.
};

} // namespace brimlet
