#include "platform/curl/curlsockets.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace brimlet {
namespace {

using AskName = int (*)(int socket, sockaddr* name, socklen_t* size);

SocketEnd endOf(curl_socket_t socket, AskName ask) {
    sockaddr_storage name{};
    socklen_t size = sizeof name;
    if (ask(socket, reinterpret_cast<sockaddr*>(&name), &size) != 0) {
        return {};
    }
    std::array<char, INET6_ADDRSTRLEN> text{};
    const void* address = nullptr;
    in_port_t port = 0;
    sockaddr_in four{};
    sockaddr_in6 six{};
    if (name.ss_family == AF_INET) {
        std::memcpy(&four, &name, sizeof four);
        address = &four.sin_addr;
        port = four.sin_port;
    } else if (name.ss_family == AF_INET6) {
        std::memcpy(&six, &name, sizeof six);
        address = &six.sin6_addr;
        port = six.sin6_port;
    }
    if (address == nullptr ||
        ::inet_ntop(name.ss_family, address, text.data(), text.size()) == nullptr) {
        return {};
    }
    return {QByteArray(text.data()), ntohs(port)};
}

bool isQuiet(curl_socket_t socket) {
    char byte = 0;
    return ::recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 &&
           (errno == EAGAIN || errno == EWOULDBLOCK);
}

} // namespace

bool CurlSockets::add(curl_socket_t socket) {
    m_sockets.insert(socket);
    return ::fcntl(socket, F_SETFD, FD_CLOEXEC) == 0;
}

void CurlSockets::shutUnlessQuiet(const SocketEnd& here, const SocketEnd& there,
                                  bool hasMoreRead) const {
    if (here.address.isEmpty() || there.address.isEmpty()) {
        return; // ends without a name are no connection of ours
    }
    for (const curl_socket_t socket : m_sockets) {
        if (endOf(socket, &::getsockname) == here && endOf(socket, &::getpeername) == there &&
            (hasMoreRead || !isQuiet(socket))) {
            ::shutdown(socket, SHUT_RDWR);
        }
    }
}

} // namespace brimlet
