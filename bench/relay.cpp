#include "bench/relay.h"

#include "tests/support/failure.h"

#include <array>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace brimlet {
namespace {

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

Descriptor newSocket() {
    return Descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

/// Bytes go on at once, as they would without the relay.
void sendAtOnce(const Descriptor& socket) {
    const int on = 1;
    ::setsockopt(socket.number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool sendAll(const Descriptor& socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = ::send(socket.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool isPollOf(std::string_view request) {
    return request.starts_with("GET /api/display") || request.starts_with("GET /api/host/me");
}

} // namespace

Descriptor::~Descriptor() {
    if (m_number >= 0) {
        ::close(m_number);
    }
}

Descriptor::Descriptor(Descriptor&& other) noexcept
    : m_number(std::exchange(other.m_number, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(m_number, other.m_number);
    return *this;
}

Relay::Relay(std::uint16_t servicePort)
    : m_servicePort(servicePort)
    , m_listener(newSocket())
    , m_end(::eventfd(0, EFD_CLOEXEC)) {
    constexpr int kWaiting = 64;
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(m_listener.number(), generic, size) != 0 ||
        ::listen(m_listener.number(), kWaiting) != 0 ||
        ::getsockname(m_listener.number(), generic, &size) != 0) {
        throw Failure("no port is free for the relay to the placement service");
    }
    m_root = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    m_thread = std::thread(&Relay::work, this);
}

Relay::~Relay() {
    shut();
}

void Relay::shut() {
    if (m_thread.joinable()) {
        ::eventfd_write(m_end.number(), 1);
        m_thread.join();
        m_connections.clear();
        m_listener = Descriptor();
    }
}

Traffic Relay::traffic() const {
    const std::lock_guard lock(m_mutex);
    return m_traffic;
}

std::optional<Relay::Clock::time_point> Relay::lastPollReply() const {
    const std::lock_guard lock(m_mutex);
    return m_lastPollReply;
}

void Relay::work() {
    while (true) {
        std::vector<pollfd> events{{m_end.number(), POLLIN, 0}, {m_listener.number(), POLLIN, 0}};
        for (const Connection& connection : m_connections) {
            events.push_back({connection.client.number(), POLLIN, 0});
            events.push_back({connection.service.number(), POLLIN, 0});
        }
        ::poll(events.data(), events.size(), -1);
        if (events[0].revents != 0) {
            return;
        }
        std::size_t i = 2;
        std::erase_if(m_connections, [&](Connection& connection) {
            const bool isRequest = events[i].revents != 0;
            const bool isReply = events[i + 1].revents != 0;
            i += 2;
            return (isRequest && !passOn(connection, false)) ||
                   (isReply && !passOn(connection, true));
        });
        if (events[1].revents != 0) {
            accept();
        }
    }
}

void Relay::accept() {
    Connection connection{
        Descriptor(::accept4(m_listener.number(), nullptr, nullptr, SOCK_CLOEXEC)), newSocket()};
    const sockaddr_in address = loopback(m_servicePort);
    if (connection.client.number() >= 0 &&
        ::connect(connection.service.number(), reinterpret_cast<const sockaddr*>(&address),
                  sizeof address) == 0) {
        sendAtOnce(connection.client);
        sendAtOnce(connection.service);
        m_connections.push_back(std::move(connection));
    }
}

bool Relay::passOn(Connection& connection, bool isReply) {
    const Descriptor& from = isReply ? connection.service : connection.client;
    const Descriptor& to = isReply ? connection.client : connection.service;
    std::array<char, 65536> buffer{};
    const auto count = ::recv(from.number(), buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        return false;
    }
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
    if (isReply) {
        countReply(connection, bytes.size());
    } else {
        countRequest(connection, bytes);
    }
    return sendAll(to, bytes);
}

void Relay::countRequest(Connection& connection, std::string_view bytes) {
    const std::lock_guard lock(m_mutex);
    // A program waits for each reply, and sends the head of a request as a whole.
    if (bytes.starts_with("GET ") || bytes.starts_with("POST ")) {
        connection.isPoll = isPollOf(bytes);
        ++(connection.isPoll ? m_traffic.polls : m_traffic.otherRequests);
        if (connection.isPoll && !std::exchange(connection.hasPolled, true)) {
            ++m_traffic.pollConnections;
        }
    }
    if (connection.isPoll) {
        m_traffic.pollBytesSent += static_cast<std::int64_t>(bytes.size());
    }
}

void Relay::countReply(const Connection& connection, std::size_t bytes) {
    const std::lock_guard lock(m_mutex);
    if (connection.isPoll) {
        m_traffic.pollBytesReceived += static_cast<std::int64_t>(bytes);
        m_lastPollReply = Clock::now();
    }
}

} // namespace brimlet
