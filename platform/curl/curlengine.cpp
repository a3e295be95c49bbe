#include "platform/curl/curlengine.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>
#include <vector>

namespace brimlet {
namespace {

/// Idle connections kept for each client, counted over all of them.
constexpr long kIdleConnections = 4;

/// 0 where no reply came.
int statusOf(const HttpResult& result) {
    const auto* const reply = std::get_if<HttpReply>(&result);
    return reply == nullptr ? 0 : reply->status;
}

void deliver(CurlClientState& client) {
    // The coroutine that is resumed may send, destroy the client, or both.
    while (!client.outcomes.empty()) {
        CurlClientState::Outcome outcome = std::move(client.outcomes.front());
        client.outcomes.pop_front();
        outcome.deferred.resolve(client.isGone ? HttpError::Cancelled : std::move(outcome.result));
    }
}

void finish(const CurlRequestChain& chain, HttpResult result) {
    auto& outcomes = chain.client->outcomes;
    outcomes.push_back({chain.outcome, std::move(result)});
    if (outcomes.size() == 1) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [client = chain.client] { deliver(*client); },
            Qt::QueuedConnection);
    }
}

} // namespace

CurlEngine::CurlEngine(QByteArray moreAuthorities)
    : m_multi(curl_multi_init()) {
    m_context.moreAuthorities = std::move(moreAuthorities);
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer,
                     [this] { socketAction(CURL_SOCKET_TIMEOUT, 0); });

    CURLM* const multi = m_multi.get();
    curl_multi_setopt(multi, CURLMOPT_SOCKETFUNCTION, &CurlEngine::onSocketWanted);
    curl_multi_setopt(multi, CURLMOPT_SOCKETDATA, static_cast<void*>(this));
    curl_multi_setopt(multi, CURLMOPT_TIMERFUNCTION, &CurlEngine::onTimerWanted);
    curl_multi_setopt(multi, CURLMOPT_TIMERDATA, static_cast<void*>(this));
    curl_multi_setopt(multi, CURLMOPT_PIPELINING, long{CURLPIPE_NOTHING});
}

std::shared_ptr<CurlClientState> CurlEngine::join() {
    const long scope = m_clientsEver++;
    curl_multi_setopt(m_multi.get(), CURLMOPT_MAXCONNECTS, kIdleConnections * m_clientsEver);
    return std::make_shared<CurlClientState>(scope);
}

Deferred<HttpResult> CurlEngine::start(HttpRequest request,
                                       std::shared_ptr<CurlClientState> client) {
    auto chain = std::make_unique<CurlRequestChain>(std::move(request), std::move(client));
    Deferred<HttpResult> outcome = chain->outcome;
    CurlUrl address = addressOf(chain->request.url);
    if (chain->client->isGone) {
        outcome.resolve(HttpError::Cancelled);
    } else if (!isSendable(chain->request) || !address) {
        outcome.resolve(HttpError::BadRequest);
    } else {
        chain->lookup = chain->client->replies.lookUp(chain->request);
        startTransfer(std::move(chain), std::move(address));
    }
    return outcome;
}

CurlUrl CurlEngine::addressOf(const Url& url) {
    if (!m_lastAddress || m_lastAddress->first != url) {
        m_lastAddress.emplace(url, curlAddress(url));
    }
    const CurlUrl& address = m_lastAddress->second;
    return CurlUrl(address ? curl_url_dup(address.get()) : nullptr);
}

void CurlEngine::startTransfer(std::unique_ptr<CurlRequestChain> chain, CurlUrl address) {
    if (chain->deadline.hasExpired()) {
        finish(*chain, HttpError::TimedOut);
        return;
    }
    auto transfer = std::make_unique<CurlTransfer>(std::move(chain), std::move(address), m_context);
    if (!transfer->isReady() ||
        curl_multi_add_handle(m_multi.get(), transfer->handle()) != CURLM_OK) {
        finish(*transfer->chain, HttpError::Unreachable);
        return;
    }
    m_transfers.push_back(std::move(transfer));
}

void CurlEngine::leave(CurlClientState& client) {
    client.isGone = true;
    for (auto next = m_transfers.begin(); next != m_transfers.end();) {
        const auto position = next++;
        const CurlTransfer& transfer = **position;
        if (&transfer.client() != &client) {
            continue;
        }
        if (transfer.chain) {
            client.outcomes.push_back({transfer.chain->outcome, HttpError::Cancelled});
        }
        remove(position);
    }
    deliver(client);
}

void CurlEngine::socketAction(curl_socket_t socket, int events) {
    const auto self = shared_from_this(); // a redirect rule may destroy the last client
    int running = 0;
    curl_multi_socket_action(m_multi.get(), socket, events, &running);
    endTransfers();
    collectResults();
}

void CurlEngine::endTransfers() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        CurlTransfer* transfer = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        transfer->setCurlResult(message->data.result);
    }
}

void CurlEngine::collectResults() {
    struct Collected {
        std::unique_ptr<CurlRequestChain> chain;
        HttpResult result;
        CurlHead head;
    };
    std::vector<Collected> all;
    for (auto next = m_transfers.begin(); next != m_transfers.end();) {
        const auto position = next++;
        CurlTransfer& transfer = **position;
        if (transfer.chain && transfer.hasResult()) {
            all.push_back({std::move(transfer.chain), transfer.takeResult(), transfer.head()});
        }
        if (!transfer.chain && transfer.isDrained()) {
            remove(position);
        }
    }
    // Only now, because a redirect rule may destroy a client and its transfers.
    for (Collected& one : all) {
        redirectOrFinish(std::move(one.chain), std::move(one.result), one.head);
    }
}

void CurlEngine::remove(Transfers::iterator position) {
    curl_multi_remove_handle(m_multi.get(), (*position)->handle());
    m_transfers.erase(position);
}

void CurlEngine::redirectOrFinish(std::unique_ptr<CurlRequestChain> chain, HttpResult result,
                                  const CurlHead& head) {
    CurlClientState& client = *chain->client;
    if (chain->lookup.kept && statusOf(result) == 304) {
        ++client.traffic.notModified;
    }
    result = client.replies.applyReply(chain->lookup, std::move(result), head.validators());
    CurlUrl target = client.isGone ? nullptr : chain->redirect(statusOf(result), head.location());
    if (target && !client.isGone) { // the redirect rule may have destroyed the client
        startTransfer(std::move(chain), std::move(target));
    } else {
        finish(*chain, std::move(result));
    }
}

CurlEngine::Socket& CurlEngine::socketFor(curl_socket_t socket) {
    auto& known = m_sockets[socket];
    if (!known) {
        known = std::make_unique<Socket>();
        known->reading.setSocket(socket);
        known->writing.setSocket(socket);
        QObject::connect(&known->reading, &QSocketNotifier::activated, &known->reading,
                         [this, socket] { socketAction(socket, CURL_CSELECT_IN); });
        QObject::connect(&known->writing, &QSocketNotifier::activated, &known->writing,
                         [this, socket] { socketAction(socket, CURL_CSELECT_OUT); });
    }
    return *known;
}

int CurlEngine::onSocketWanted(CURL* /*easy*/, curl_socket_t socket, int what, void* self,
                               void* /*unused*/) {
    Socket& watched = static_cast<CurlEngine*>(self)->socketFor(socket);
    watched.reading.setEnabled(what == CURL_POLL_IN || what == CURL_POLL_INOUT);
    watched.writing.setEnabled(what == CURL_POLL_OUT || what == CURL_POLL_INOUT);
    return 0;
}

int CurlEngine::onTimerWanted(CURLM* /*multi*/, long milliseconds, void* self) {
    QTimer& timer = static_cast<CurlEngine*>(self)->m_timer;
    if (milliseconds < 0) {
        timer.stop();
    } else {
        timer.start(
            static_cast<int>(std::min<long>(milliseconds, std::numeric_limits<int>::max())));
    }
    return 0;
}

} // namespace brimlet
