#pragma once

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace brimlet {

/// Polls the placement service over one kept connection of plain HTTP/1.1. Reads only bodies with a
/// length; the poll after a connection has ended opens another.
class Service final {
public:
    /// `root` as "http://HOST:PORT".
    explicit Service(const std::string& root) {
        const auto colon = root.rfind(':');
        const auto host = root.find("//") + 2;
        m_host = root.substr(host, colon - host);
        m_port = root.substr(colon + 1);
    }
    ~Service() { close(); }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// To be watched for input; -1 while there is no connection.
    [[nodiscard]] int descriptor() const { return m_socket; }

    /// Requests the placement, on condition that it differs from the last one.
    void poll() {
        if (m_socket < 0) {
            connect();
        }
        std::string request =
            "GET /api/display HTTP/1.1\r\nHost: " + m_host + ':' + m_port + "\r\n";
        if (!m_validator.empty()) {
            request += "If-None-Match: " + m_validator + "\r\n";
        }
        request += "\r\n";
        if (m_socket >= 0 && ::send(m_socket, request.data(), request.size(), MSG_NOSIGNAL) < 0) {
            close();
        }
    }

    /// Reads what has arrived; the body of a new placement once it is complete.
    [[nodiscard]] std::optional<std::string> read() {
        std::array<char, 4096> bytes{};
        const auto count = ::recv(m_socket, bytes.data(), bytes.size(), 0);
        if (count <= 0) {
            close();
            return std::nullopt;
        }
        m_received.append(bytes.data(), static_cast<std::size_t>(count));
        return takeReply();
    }

private:
    void connect() {
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
    void close() {
        if (m_socket >= 0) {
            ::close(m_socket);
        }
        m_socket = -1;
        m_received.clear();
    }
    [[nodiscard]] std::optional<std::string> takeReply() {
        const auto headEnd = m_received.find("\r\n\r\n");
        if (headEnd == std::string::npos) {
            return std::nullopt;
        }
        const std::string head = m_received.substr(0, headEnd + 2);
        const bool isUnchanged = head.starts_with("HTTP/1.1 304");
        const std::size_t length =
            isUnchanged ? 0 : std::strtoul(header(head, "Content-Length").c_str(), nullptr, 10);
        if (m_received.size() < headEnd + 4 + length) {
            return std::nullopt;
        }
        const std::string body = m_received.substr(headEnd + 4, length);
        m_received.clear();
        if (!head.starts_with("HTTP/1.1 200")) {
            return std::nullopt;
        }
        m_validator = header(head, "ETag");
        return body;
    }
    /// A header's value, with the name in the placement service's spelling; empty without it.
    [[nodiscard]] static std::string header(const std::string& head, const std::string& name) {
        const std::string start = "\r\n" + name + ": ";
        const auto found = head.find(start);
        if (found == std::string::npos) {
            return {};
        }
        const auto value = found + start.size();
        return head.substr(value, head.find('\r', value) - value);
    }

    std::string m_host;
    std::string m_port;
    int m_socket = -1;
    std::string m_received;
    std::string m_validator;
};

} // namespace brimlet
