#pragma once

#include "platform/curl/curlrequestchain.h"
#include "platform/curl/curltransfer.h"

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
/// may send again or drop the client. Clients that share an engine, its tenants, have connections,
/// kept replies and a bound on bodies of their own.
class CurlEngine final : public std::enable_shared_from_this<CurlEngine> {
public:
    explicit CurlEngine(QByteArray moreAuthorities);
    ~CurlEngine() = default;
    CurlEngine(const CurlEngine&) = delete;
    CurlEngine& operator=(const CurlEngine&) = delete;

    /// A new client. It leaves, once, before the engine goes.
    [[nodiscard]] std::shared_ptr<CurlClientState> join();
    /// The outcome is there at once for a request that cannot be sent.
    [[nodiscard]] Deferred<HttpResult> start(HttpRequest request,
                                             std::shared_ptr<CurlClientState> client);
    /// Ends everything of the client's that is under way as Cancelled, and whatever it starts from
    /// then on. Its connections stay until they are found old.
    void leave(CurlClientState& client);

    [[nodiscard]] const CurlTraffic& traffic() const { return m_context.traffic; }

private:
    struct Socket {
        QSocketNotifier reading{QSocketNotifier::Read};
        QSocketNotifier writing{QSocketNotifier::Write};
    };
    struct Outcome {
        Deferred<HttpResult> deferred;
        std::shared_ptr<CurlClientState> client;
        HttpResult result;
    };
    using Outcomes = std::deque<Outcome>;
    using Transfers = std::list<std::unique_ptr<CurlTransfer>>;

    void startTransfer(std::unique_ptr<CurlRequestChain> chain, CurlUrl address);
    void act(curl_socket_t socket, int events);
    void collect();
    void endTransfers();
    void drop(const CurlTransfer& transfer);
    void allowConnections();
    void settle(std::unique_ptr<CurlRequestChain> chain, HttpResult result, const CurlHead& head);
    void finish(const CurlRequestChain& chain, HttpResult result);
    static void deliver(Outcomes& outcomes);
    Socket& socketFor(curl_socket_t socket);

    static int onSocketWanted(CURL* easy, curl_socket_t socket, int what, void* self, void* unused);
    static int onTimerWanted(CURLM* multi, long milliseconds, void* self);

    CurlLibrary m_library;
    CurlTransferContext m_context;
    long m_clients = 0;
    long m_nextScope = 0;
    Outcomes m_outcomes;
    /// By descriptor, kept disabled when unused: descriptors come back, so there are few.
    std::map<curl_socket_t, std::unique_ptr<Socket>> m_sockets;
    QTimer m_timer;
    CurlMulti m_multi;
    Transfers m_transfers;
};

} // namespace brimlet
