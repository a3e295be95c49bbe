#pragma once

#include "platform/curl/curlexchange.h"
#include "platform/curl/curlhop.h"

#include <QSocketNotifier>
#include <QTimer>

#include <deque>
#include <list>
#include <map>
#include <memory>

namespace brimlet {

/// Runs hops on libcurl's multi-socket interface from the event loop: a pair of notifiers for each
/// socket, one timer for all, nothing awake while nothing is under way. Outcomes are handed over in
/// a turn of the loop of their own, never from inside libcurl or a notifier, so whoever gets one
/// may send again or drop the client.
class CurlEngine final : public std::enable_shared_from_this<CurlEngine> {
public:
    explicit CurlEngine(QByteArray moreAuthorities);
    ~CurlEngine();
    CurlEngine(const CurlEngine&) = delete;
    CurlEngine& operator=(const CurlEngine&) = delete;

    /// The outcome is there at once for a request that cannot be sent.
    [[nodiscard]] Deferred<HttpResult> start(HttpRequest request);
    /// Ends everything under way as Cancelled, and whatever is started from then on.
    void close();

private:
    struct Socket {
        QSocketNotifier reading{QSocketNotifier::Read};
        QSocketNotifier writing{QSocketNotifier::Write};
    };
    struct Outcome {
        Deferred<HttpResult> deferred;
        HttpResult result;
    };
    using Hops = std::list<std::unique_ptr<CurlHop>>;

    void startHop(std::unique_ptr<CurlExchange> exchange);
    void act(curl_socket_t socket, int events);
    void collect();
    void endHops();
    void dropSpent();
    void settle(std::unique_ptr<CurlExchange> exchange, HttpResult result, const CurlHead& head);
    void finish(const CurlExchange& exchange, HttpResult result);
    void deliver();
    Socket& socketFor(curl_socket_t socket);

    static int onSocketWanted(CURL* easy, curl_socket_t socket, int what, void* self, void* unused);
    static int onTimerWanted(CURLM* multi, long milliseconds, void* self);

    CurlLibrary m_library;
    QByteArray m_moreAuthorities;
    bool m_isClosed = false;
    std::deque<Outcome> m_outcomes;
    /// By descriptor, kept disabled when unused: descriptors come back, so there are few.
    std::map<curl_socket_t, std::unique_ptr<Socket>> m_sockets;
    QTimer m_timer;
    ValidatorCache m_replies;
    CurlSockets m_connected;
    qsizetype m_held = 0; ///< Bytes of bodies that are not yet handed over.
    CurlMulti m_multi;
    Hops m_hops;
};

} // namespace brimlet
