#pragma once

#include "platform/curl/curlrequestchain.h"
#include "platform/curl/curltransfer.h"

#include <QSocketNotifier>
#include <QTimer>

#include <list>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace brimlet {

/// Runs transfers on libcurl's multi-socket interface from the event loop: two notifiers for each
/// socket, one timer for all, and no wake-up while no transfer runs. Outcomes are delivered in a
/// later turn of the loop, never from inside libcurl or a notifier, so their receiver may send
/// again or destroy the client. Clients may share an engine; each has its own connections, kept
/// replies and limits.
class CurlEngine final : public std::enable_shared_from_this<CurlEngine> {
public:
    explicit CurlEngine(QByteArray moreAuthorities);
    ~CurlEngine() = default;
    CurlEngine(const CurlEngine&) = delete;
    CurlEngine& operator=(const CurlEngine&) = delete;

    /// Adds a client and returns its state. The client must call `leave()` once, before the engine
    /// is destroyed. The limit on idle connections is not lowered when a client leaves.
    [[nodiscard]] std::shared_ptr<CurlClientState> join();
    /// If the request cannot be sent, the returned value is already resolved.
    [[nodiscard]] Deferred<HttpResult> start(HttpRequest request,
                                             std::shared_ptr<CurlClientState> client);
    /// Ends the client's requests as Cancelled before it returns, and later ones when they start.
    /// Its connections stay open until libcurl finds them too old.
    void leave(CurlClientState& client);

private:
    struct Socket {
        QSocketNotifier reading{QSocketNotifier::Read};
        QSocketNotifier writing{QSocketNotifier::Write};
    };
    using Transfers = std::list<std::unique_ptr<CurlTransfer>>;

    /// As `curlAddress()`, which is asked only when the address is another than the last time: most
    /// requests are polls.
    [[nodiscard]] CurlUrl addressOf(const Url& url);
    void startTransfer(std::unique_ptr<CurlRequestChain> chain, CurlUrl address);
    void socketAction(curl_socket_t socket, int events);
    void endTransfers();
    void collectResults();
    void remove(Transfers::iterator position);
    void redirectOrFinish(std::unique_ptr<CurlRequestChain> chain, HttpResult result,
                          const CurlHead& head);
    Socket& socketFor(curl_socket_t socket);

    static int onSocketWanted(CURL* easy, curl_socket_t socket, int what, void* self, void* unused);
    static int onTimerWanted(CURLM* multi, long milliseconds, void* self);

    CurlLibrary m_library;
    CurlTransferContext m_context;
    std::optional<std::pair<Url, CurlUrl>> m_lastAddress;
    long m_clientsEver = 0; ///< All that ever joined, including those that left.
    /// By descriptor. Unused ones stay, disabled: the system reuses descriptors, so there are few.
    std::map<curl_socket_t, std::unique_ptr<Socket>> m_sockets;
    QTimer m_timer;
    CurlMulti m_multi;
    Transfers m_transfers;
};

} // namespace brimlet
