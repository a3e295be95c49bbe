#include "bench/floor/floorservice.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace brimlet {
namespace {

/// A header's value, as the placement service writes its name; empty when there is none.
std::string headerOf(const std::string& head, const std::string& name) {
    const std::string start = "\r\n" + name + ": ";
    const auto found = head.find(start);
    if (found == std::string::npos) {
        return {};
    }
    const auto value = found + start.size();
    return head.substr(value, head.find('\r', value) - value);
}

} // namespace

FloorService::FloorService(const std::string& root) {
    const std::string scheme = "http://";
    const auto colon = root.rfind(':');
    if (!root.starts_with(scheme) || colon < scheme.size()) {
        throw std::runtime_error(root + " is not http://HOST:PORT");
    }
    m_host = root.substr(scheme.size(), colon - scheme.size());
    m_port = root.substr(colon + 1);
}

void FloorService::connect() {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(m_host.c_str(), m_port.c_str(), &hints, &found) != 0) {
        return;
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> address(found, &::freeaddrinfo);
    m_socket = ::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(m_socket, address->ai_addr, address->ai_addrlen) != 0) {
        close();
    }
}

void FloorService::close() {
    if (m_socket >= 0) {
        ::close(m_socket);
    }
    m_socket = -1;
    m_received.clear();
}

void FloorService::ask() {
    if (m_socket < 0) {
        connect();
    }
    std::string request = "GET /api/display HTTP/1.1\r\nHost: " + m_host + ':' + m_port + "\r\n";
    if (!m_validator.empty()) {
        request += "If-None-Match: " + m_validator + "\r\n";
    }
    request += "\r\n";
    if (m_socket >= 0 && ::send(m_socket, request.data(), request.size(), MSG_NOSIGNAL) < 0) {
        close();
    }
}

std::optional<std::string> FloorService::read() {
    std::array<char, 4096> bytes{};
    const auto count = ::recv(m_socket, bytes.data(), bytes.size(), 0);
    if (count <= 0) {
        close();
        return std::nullopt;
    }
    m_received.append(bytes.data(), static_cast<std::size_t>(count));
    return takeReply();
}

/// The first complete reply of what was received; absent for one that brings nothing new.
std::optional<std::string> FloorService::takeReply() {
    const auto headEnd = m_received.find("\r\n\r\n");
    if (headEnd == std::string::npos) {
        return std::nullopt;
    }
    const std::string head = m_received.substr(0, headEnd + 2);
    const std::string length = headerOf(head, "Content-Length");
    const std::size_t bodyStart = headEnd + 4;
    const bool isSame = head.starts_with("HTTP/1.1 304");
    const std::size_t bodyLength = isSame ? 0 : std::strtoul(length.c_str(), nullptr, 10);
    if (m_received.size() < bodyStart + bodyLength) {
        return std::nullopt;
    }
    const std::string body = m_received.substr(bodyStart, bodyLength);
    m_received.clear();
    if (!head.starts_with("HTTP/1.1 200")) {
        return std::nullopt;
    }
    m_validator = headerOf(head, "ETag");
    return body;
}

} // namespace brimlet
