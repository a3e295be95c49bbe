#pragma once

#include <curl/curl.h>

#include <QByteArray>

#include <map>
#include <tuple>
#include <vector>

namespace brimlet {

/// One end of a connection, the address in digits.
struct SocketEnd final {
    QByteArray address;
    int port = 0;

    bool operator==(const SocketEnd&) const = default;
    bool operator<(const SocketEnd& other) const {
        return std::tie(port, address) < std::tie(other.port, other.address);
    }
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
    void shutDownIfDataIsPending(const SocketEnd& here, const SocketEnd& there, bool hasMoreRead);

private:
    using ByEnd = std::multimap<SocketEnd, curl_socket_t>;

    void learnEnds();

    std::vector<curl_socket_t> m_connecting; ///< Their own ends are not known yet.
    /// By their own end. Some may be closed by now, or be others by now: what they are is asked
    /// again before anything is done to them.
    ByEnd m_byEnd;
    std::map<curl_socket_t, ByEnd::iterator> m_places; ///< A descriptor that comes back moves.
};

} // namespace brimlet
