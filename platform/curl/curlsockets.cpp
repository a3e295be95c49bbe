#include "platform/curl/curlsockets.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace brimlet {
namespace {

using NameFunction = int (*)(int socket, sockaddr* name, socklen_t* size);

template <typename Address>
QByteArray bytesOf(const Address& address) {
    return QByteArray(reinterpret_cast<const char*>(&address), sizeof address);
}

SocketEnd endOf(curl_socket_t socket, NameFunction ask) {
    sockaddr_storage name{};
    socklen_t size = sizeof name;
    if (ask(socket, reinterpret_cast<sockaddr*>(&name), &size) != 0) {
        return {};
    }
    if (name.ss_family == AF_INET) {
        sockaddr_in four{};
        std::memcpy(&four, &name, sizeof four);
        return {bytesOf(four.sin_addr), ntohs(four.sin_port)};
    }
    if (name.ss_family == AF_INET6) {
        sockaddr_in6 six{};
        std::memcpy(&six, &name, sizeof six);
        return {bytesOf(six.sin6_addr), ntohs(six.sin6_port)};
    }
    return {};
}

bool isConnecting(curl_socket_t socket) {
    sockaddr_storage name{};
    socklen_t size = sizeof name;
    return ::getpeername(socket, reinterpret_cast<sockaddr*>(&name), &size) != 0 &&
           errno == ENOTCONN;
}

/// True when the connection is open and has no data to read.
bool isIdle(curl_socket_t socket) {
    char byte = 0;
    return ::recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 &&
           (errno == EAGAIN || errno == EWOULDBLOCK);
}

} // namespace

SocketEnd SocketEnd::of(const char* text, int port) {
    in_addr four{};
    in6_addr six{};
    if (::inet_pton(AF_INET, text, &four) == 1) {
        return {bytesOf(four), port};
    }
    return {::inet_pton(AF_INET6, text, &six) == 1 ? bytesOf(six) : QByteArray(), port};
}

bool CurlSockets::add(curl_socket_t socket) {
    if (const auto before = m_places.find(socket); before != m_places.end()) {
        m_byLocalEnd.erase(before->second);
        m_places.erase(before);
    }
    std::erase(m_connecting, socket);
    m_connecting.push_back(socket);
    return ::fcntl(socket, F_SETFD, FD_CLOEXEC) == 0;
}

void CurlSockets::shutDownIfDataIsPending(const SocketEnd& local, const SocketEnd& remote,
                                          bool isDataBuffered) {
    if (local.address.isEmpty() || remote.address.isEmpty()) {
        return; // not a TCP connection
    }
    learnLocalEnds();
    const auto [first, last] = m_byLocalEnd.equal_range(local);
    std::for_each(first, last, [&](const auto& known) {
        const curl_socket_t socket = known.second;
        if (endOf(socket, &::getsockname) == local && endOf(socket, &::getpeername) == remote &&
            (isDataBuffered || !isIdle(socket))) {
            ::shutdown(socket, SHUT_RDWR);
        }
    });
}

void CurlSockets::learnLocalEnds() {
    // Before a socket is connected its local end may still change.
    std::erase_if(m_connecting, [this](curl_socket_t socket) {
        if (isConnecting(socket)) {
            return false;
        }
        m_places[socket] = m_byLocalEnd.emplace(endOf(socket, &::getsockname), socket);
        return true;
    });
}

} // namespace brimlet
