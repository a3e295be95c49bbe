#pragma once

#include "bench/desktop.h"
#include "bench/figures.h"

#include <xcb/record.h>

namespace brimlet {

/// Counts from outside what one program asks of the X server: all requests of the client that owns
/// a window, those of extensions too, as the server takes them. Each is copied to this benchmark,
/// so it is not for a program that sends megabytes.
class RequestCounter final {
public:
    /// Counts from now on. The desktop outlives the counter.
    RequestCounter(const Desktop& desktop, xcb_window_t window);
    ~RequestCounter();
    RequestCounter(const RequestCounter&) = delete;
    RequestCounter& operator=(const RequestCounter&) = delete;

    /// Takes in what has been copied so far, so that it does not pile up in the server.
    void drain();
    /// Ends the counting.
    [[nodiscard]] XRequests finish();

private:
    void add(const xcb_record_enable_context_reply_t& reply);
    [[nodiscard]] XcbReply<xcb_record_enable_context_reply_t> next(bool isWaitedFor);

    xcb_connection_t* m_control;
    Desktop m_data; ///< A second connection: the one that receives copies can do nothing else.
    xcb_record_context_t m_context;
    unsigned int m_sequence = 0;
    XRequests m_requests;
    std::uint32_t m_bytesLeft = 0; ///< Of a request that goes on in the next copy.
};

} // namespace brimlet
