#include "tools/placement/connection.h"

#include <algorithm>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

namespace brimlet::placement {

namespace {

// How long a client may pause in the middle of a request, or leave a reply unread.
constexpr std::chrono::seconds patience{30};

constexpr std::chrono::milliseconds drainTime{500};

using NameOf = int (*)(int, sockaddr*, socklen_t*);

// The service listens on an IPv4 address only.
void readAddress(NameOf nameOf, socket_t socket, std::string& ip, int& port) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    std::array<char, INET_ADDRSTRLEN> text{};
    if (nameOf(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
        ::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size()) != nullptr) {
        ip = text.data();
        port = ntohs(address.sin_port);
    }
}

} // namespace

bool Connection::waitForRequest(std::chrono::milliseconds time) {
    m_received = 0;
    return isBuffered() || waitFor(POLLIN, time);
}

void Connection::waitUntilGone() {
    // What the client still sends is not answered.
    constexpr std::chrono::milliseconds forever{-1};
    std::array<char, 512> unread{};
    while (waitFor(POLLIN, forever) && ::recv(m_socket, unread.data(), unread.size(), 0) > 0) {
    }
}

void Connection::drain() {
    ::shutdown(m_socket, SHUT_WR);
    const auto end = std::chrono::steady_clock::now() + drainTime;
    while (std::chrono::steady_clock::now() < end && waitFor(POLLIN, drainTime) &&
           ::recv(m_socket, m_buffer.data(), m_buffer.size(), 0) > 0) {
    }
}

bool Connection::is_readable() const {
    return isBuffered() || waitFor(POLLIN, patience);
}

bool Connection::is_writable() const {
    return !m_dropped && waitFor(POLLOUT, patience);
}

ssize_t Connection::read(char* data, size_t size) {
    if (isExhausted()) {
        return -1;
    }
    if (!isBuffered()) {
        if (!waitFor(POLLIN, patience)) {
            return -1;
        }
        const ssize_t count = ::recv(m_socket, m_buffer.data(), m_buffer.size(), 0);
        if (count <= 0) {
            return count;
        }
        m_next = 0;
        m_filled = static_cast<std::size_t>(count);
    }
    const std::size_t count = std::min({size, m_filled - m_next, requestLimit - m_received});
    std::copy_n(m_buffer.begin() + static_cast<std::ptrdiff_t>(m_next), count, data);
    m_next += count;
    m_received += count;
    return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* data, size_t size) {
    if (!is_writable()) {
        return -1;
    }
    return ::send(m_socket, data, size, 0); // the library ignores SIGPIPE
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
    readAddress(::getpeername, m_socket, ip, port);
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
    readAddress(::getsockname, m_socket, ip, port);
}

bool Connection::waitFor(short events, std::chrono::milliseconds time) const {
    std::array<pollfd, 2> entries{{{m_socket, events, 0}, {m_stop.fd(), POLLIN, 0}}};
    int ready = 0;
    do {
        ready = ::poll(entries.data(), entries.size(), static_cast<int>(time.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && entries[1].revents == 0;
}

} // namespace brimlet::placement
