#pragma once

#include "tools/placement/stopsignal.h"

#include <httplib.h>

#include <array>
#include <chrono>
#include <cstddef>

namespace brimlet::placement {

/// One accepted connection, read and written by the HTTP library. Every wait ends at once when the
/// service stops. Used by one thread; does not own the socket.
class Connection final : public httplib::Stream {
public:
    /// Bytes of one request, head and body; the library has its own limits for each.
    static constexpr std::size_t requestLimit = 131072;

    Connection(socket_t socket, const StopSignal& stop)
        : m_socket(socket)
        , m_stop(stop) {}

    /// Waits for the first byte of a request; false when none comes. Restarts the request limit.
    [[nodiscard]] bool waitForRequest(std::chrono::milliseconds time);
    /// Returns when the client has gone or the service stops.
    void waitUntilGone();
    /// Nothing is sent from now on.
    void dropReply() { m_dropped = true; }
    /// The request was longer than the limit and has not been read to its end.
    [[nodiscard]] bool isExhausted() const { return m_received >= requestLimit; }
    /// Closes the connection after the reply, so that the unread rest of a request is not taken for
    /// the next one.
    void endAfterReply() { m_ending = true; }
    [[nodiscard]] bool endsAfterReply() const { return m_ending; }
    /// Reads what the client still sends, since closing a socket with unread bytes would reset the
    /// connection and could lose the reply.
    void drain();

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* data, size_t size) override;
    ssize_t write(const char* data, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return m_socket; }

private:
    [[nodiscard]] bool waitFor(short events, std::chrono::milliseconds time) const;
    [[nodiscard]] bool isBuffered() const { return m_next < m_filled; }

    socket_t m_socket;
    const StopSignal& m_stop;
    std::array<char, 4096> m_buffer{};
    std::size_t m_next = 0;
    std::size_t m_filled = 0;
    std::size_t m_received = 0;
    bool m_dropped = false;
    bool m_ending = false;
};

} // namespace brimlet::placement
