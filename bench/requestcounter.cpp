#include "bench/requestcounter.h"

#include "tests/support/failure.h"

#include <algorithm>
#include <cstring>
#include <span>

#include <xcb/xcbext.h>

namespace brimlet {
namespace {

// What a copy holds.
constexpr std::uint8_t kFromClient = 1;
constexpr std::uint8_t kStart = 4;
constexpr std::uint8_t kEnd = 5;

/// The bytes of the request that begins here: a count of four-byte units in its second half word,
/// or in a word of its own where that is zero.
std::uint32_t lengthOf(std::span<const std::uint8_t> request) {
    std::uint16_t units = 0;
    std::memcpy(&units, request.data() + 2, sizeof units);
    std::uint32_t longUnits = units;
    if (units == 0 && request.size() >= 8) {
        std::memcpy(&longUnits, request.data() + 4, sizeof longUnits);
    }
    return std::max<std::uint32_t>(longUnits, 1) * 4;
}

} // namespace

RequestCounter::RequestCounter(const Desktop& desktop, xcb_window_t window)
    : m_control(desktop.connection())
    , m_context(xcb_generate_id(m_control)) {
    const auto* const extension = xcb_get_extension_data(m_control, &xcb_record_id);
    if (extension == nullptr || extension->present == 0) {
        throw Failure("the X server has no RECORD extension, so requests cannot be counted");
    }
    const xcb_record_client_spec_t client = window & ~xcb_get_setup(m_control)->resource_id_mask;
    xcb_record_range_t range{};
    range.core_requests = {1, 127};
    range.ext_requests.major = {128, 255};
    range.ext_requests.minor = {0, 0xffff};
    const auto created =
        xcb_record_create_context_checked(m_control, m_context, 0, 1, 1, &client, &range);
    if (const XcbReply<xcb_generic_error_t> error{xcb_request_check(m_control, created)}) {
        throw Failure("the program's X requests cannot be counted");
    }
    m_sequence = xcb_record_enable_context(m_data.connection(), m_context).sequence;
    xcb_flush(m_data.connection());
    const auto first = next(true);
    if (!first || first->category != kStart) {
        throw Failure("the X server does not begin to count requests");
    }
}

RequestCounter::~RequestCounter() {
    xcb_record_free_context(m_control, m_context);
    xcb_flush(m_control);
}

void RequestCounter::drain() {
    while (const auto reply = next(false)) {
        add(*reply);
    }
}

XRequests RequestCounter::finish() {
    xcb_record_disable_context(m_control, m_context);
    xcb_flush(m_control);
    while (const auto reply = next(true)) {
        if (reply->category == kEnd) {
            break;
        }
        add(*reply);
    }
    return m_requests;
}

XcbReply<xcb_record_enable_context_reply_t> RequestCounter::next(bool isWaitedFor) {
    xcb_generic_error_t* error = nullptr;
    void* reply = nullptr;
    if (isWaitedFor) {
        reply = xcb_wait_for_reply(m_data.connection(), m_sequence, &error);
    } else {
        xcb_poll_for_reply(m_data.connection(), m_sequence, &reply, &error);
    }
    if (error != nullptr) {
        std::free(error);
        throw Failure("the X server no longer tells what the program asks it for");
    }
    return XcbReply<xcb_record_enable_context_reply_t>(
        static_cast<xcb_record_enable_context_reply_t*>(reply));
}

void RequestCounter::add(const xcb_record_enable_context_reply_t& reply) {
    if (reply.category != kFromClient) {
        return;
    }
    std::span<const std::uint8_t> bytes(
        xcb_record_enable_context_data(&reply),
        static_cast<std::size_t>(xcb_record_enable_context_data_length(&reply)));
    m_requests.bytes += static_cast<std::int64_t>(bytes.size());
    while (!bytes.empty()) {
        if (m_bytesLeft == 0) {
            ++m_requests.count;
            m_bytesLeft = lengthOf(bytes);
        }
        const auto taken = std::min<std::size_t>(m_bytesLeft, bytes.size());
        m_bytesLeft -= static_cast<std::uint32_t>(taken);
        bytes = bytes.subspan(taken);
    }
}

} // namespace brimlet
