#pragma once

#include <curl/curl.h>

#include <QByteArray>

#include <set>

namespace brimlet {

/// One end of a connection, the address in digits.
struct SocketEnd final {
    QByteArray address;
    int port = 0;

    bool operator==(const SocketEnd&) const = default;
};

/// The descriptors that connections were made with. libcurl takes a kept connection on which
/// something has arrived unasked for a good one, and would read it as the next reply.
class CurlSockets final {
public:
    /// Takes a new descriptor; false when it cannot be kept from other programs.
    [[nodiscard]] bool add(curl_socket_t socket);
    /// To be called before the connection between these ends is used again, with whether more of it
    /// was read than was asked for. One on which anything has arrived is shut, so that sending
    /// fails and libcurl goes on with a connection of its own.
    void shutUnlessQuiet(const SocketEnd& here, const SocketEnd& there, bool hasMoreRead) const;

private:
    /// Some may be closed by now, or be others by now: what they are is asked each time.
    std::set<curl_socket_t> m_sockets;
};

} // namespace brimlet
