#pragma once

#include <curl/curl.h>

#include <QByteArray>

#include <map>
#include <tuple>
#include <vector>

namespace brimlet {

/// One end of a connection.
struct SocketEnd final {
    QByteArray address; ///< In network byte order, 4 or 16 bytes; empty when it is not known.
    int port = 0;

    /// `text` is a numeric address, IPv6 without brackets.
    [[nodiscard]] static SocketEnd of(const char* text, int port);

    bool operator==(const SocketEnd&) const = default;
    bool operator<(const SocketEnd& other) const {
        return std::tie(port, address) < std::tie(other.port, other.address);
    }
};

/// The sockets of libcurl's connections. libcurl reuses a kept connection on which data has arrived
/// since the last reply, and would read that data as the next reply. This finds such a connection
/// and shuts it down.
class CurlSockets final {
public:
    /// Takes a new socket, before it connects. False if its close-on-exec flag cannot be set.
    [[nodiscard]] bool add(curl_socket_t socket);
    /// Call before the connection between these ends is reused. `isDataBuffered` says whether data
    /// that was read from the socket still waits in the TLS library. After a shutdown sending
    /// fails, and libcurl opens a new connection.
    void shutDownIfDataIsPending(const SocketEnd& local, const SocketEnd& remote,
                                 bool isDataBuffered);

private:
    using ByLocalEnd = std::multimap<SocketEnd, curl_socket_t>;

    void learnLocalEnds();

    std::vector<curl_socket_t> m_connecting; ///< Their local ends are not known yet.
    /// A socket may have been closed since, and its descriptor reused, so both ends are read again
    /// before a shutdown.
    ByLocalEnd m_byLocalEnd;
    std::map<curl_socket_t, ByLocalEnd::iterator> m_places; ///< In m_byLocalEnd.
};

} // namespace brimlet
