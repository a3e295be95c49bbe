#include "platform/curl/curlengine.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>

namespace brimlet {
namespace {

/// Connections kept open between requests for each client, by all together.
constexpr long kIdleConnections = 4;

/// 0 where no reply came.
int statusOf(const HttpResult& result) {
    const auto* const reply = std::get_if<HttpReply>(&result);
    return reply == nullptr ? 0 : reply->status;
}

} // namespace

CurlEngine::CurlEngine(QByteArray moreAuthorities)
    : m_multi(curl_multi_init()) {
    m_context.moreAuthorities = std::move(moreAuthorities);
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { act(CURL_SOCKET_TIMEOUT, 0); });

    CURLM* const multi = m_multi.get();
    curl_multi_setopt(multi, CURLMOPT_SOCKETFUNCTION, &CurlEngine::onSocketWanted);
    curl_multi_setopt(multi, CURLMOPT_SOCKETDATA, static_cast<void*>(this));
    curl_multi_setopt(multi, CURLMOPT_TIMERFUNCTION, &CurlEngine::onTimerWanted);
    curl_multi_setopt(multi, CURLMOPT_TIMERDATA, static_cast<void*>(this));
    curl_multi_setopt(multi, CURLMOPT_PIPELINING, long{CURLPIPE_NOTHING});
}

std::shared_ptr<CurlClientState> CurlEngine::join() {
    ++m_clients;
    allowConnections();
    return std::make_shared<CurlClientState>(m_nextScope++);
}

void CurlEngine::allowConnections() {
    const long most = kIdleConnections * std::max(m_clients, 1L); // 0 would mean libcurl's own rule
    curl_multi_setopt(m_multi.get(), CURLMOPT_MAXCONNECTS, most);
}

Deferred<HttpResult> CurlEngine::start(HttpRequest request,
                                       std::shared_ptr<CurlClientState> client) {
    auto chain = std::make_unique<CurlRequestChain>(std::move(request), std::move(client));
    Deferred<HttpResult> outcome = chain->outcome;
    CurlUrl address = curlAddress(chain->request.url);
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

void CurlEngine::startTransfer(std::unique_ptr<CurlRequestChain> chain, CurlUrl address) {
    const std::chrono::milliseconds left(chain->deadline.remainingTime());
    if (left.count() == 0) {
        finish(*chain, HttpError::TimedOut);
        return;
    }
    const HttpRequest request = chain->currentRequest();
    auto transfer =
        std::make_unique<CurlTransfer>(request, std::move(address), left, m_context, chain->client);
    if (!transfer->isReady() ||
        curl_multi_add_handle(m_multi.get(), transfer->handle()) != CURLM_OK) {
        finish(*chain, HttpError::Unreachable);
        return;
    }
    transfer->chain = std::move(chain);
    CurlTransfer& started = *transfer;
    started.place = m_transfers.insert(m_transfers.end(), std::move(transfer));
}

void CurlEngine::leave(CurlClientState& client) {
    client.isGone = true;
    Outcomes cancelled;
    for (Outcome& outcome : std::exchange(m_outcomes, {})) {
        const bool isOwn = outcome.client.get() == &client;
        (isOwn ? cancelled : m_outcomes).push_back(std::move(outcome));
    }
    for (auto next = m_transfers.begin(); next != m_transfers.end();) {
        CurlTransfer& transfer = **next++;
        if (transfer.client() != &client) {
            continue;
        }
        if (transfer.chain) {
            cancelled.push_back(
                {transfer.chain->outcome, transfer.chain->client, HttpError::Cancelled});
        }
        drop(transfer);
    }
    --m_clients;
    allowConnections();
    for (Outcome& outcome : cancelled) {
        outcome.result = HttpError::Cancelled;
    }
    deliver(cancelled);
}

void CurlEngine::act(curl_socket_t socket, int events) {
    const auto self = shared_from_this(); // a redirect rule is someone else's code
    int running = 0;
    curl_multi_socket_action(m_multi.get(), socket, events, &running);
    collect();
}

void CurlEngine::collect() {
    endTransfers();

    struct Settled {
        std::unique_ptr<CurlRequestChain> chain;
        HttpResult result;
        CurlHead head;
    };
    std::vector<Settled> settled;
    for (CurlTransfer* const transfer : std::exchange(m_context.news, {})) {
        transfer->setSeen();
        if (transfer->chain && transfer->hasResult()) {
            settled.push_back(
                {std::move(transfer->chain), transfer->takeResult(), transfer->head()});
        }
        if (!transfer->chain && transfer->isDrained()) {
            drop(*transfer);
        }
    }
    for (Settled& one : settled) {
        settle(std::move(one.chain), std::move(one.result), one.head);
    }
}

void CurlEngine::endTransfers() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        CurlTransfer* transfer = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        transfer->end(message->data.result);
    }
}

void CurlEngine::drop(const CurlTransfer& transfer) {
    curl_multi_remove_handle(m_multi.get(), transfer.handle());
    std::erase(m_context.news, &transfer); // libcurl may have had a last word
    m_transfers.erase(transfer.place);
}

void CurlEngine::settle(std::unique_ptr<CurlRequestChain> chain, HttpResult result,
                        const CurlHead& head) {
    CurlClientState& client = *chain->client;
    if (chain->lookup.kept && statusOf(result) == 304) {
        ++m_context.traffic.notModified;
    }
    result = client.replies.applyReply(chain->lookup, std::move(result), head.validators());
    const auto* const reply = std::get_if<HttpReply>(&result);
    CurlUrl target;
    if (reply != nullptr && !client.isGone) {
        target = chain->redirect(reply->status, head.location());
    }
    if (target && !client.isGone) { // the rule may have dropped the client
        startTransfer(std::move(chain), std::move(target));
    } else {
        finish(*chain, std::move(result));
    }
}

void CurlEngine::finish(const CurlRequestChain& chain, HttpResult result) {
    if (chain.client->isGone) {
        result = HttpError::Cancelled;
    }
    m_outcomes.push_back({chain.outcome, chain.client, std::move(result)});
    if (m_outcomes.size() == 1) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self = shared_from_this()] { deliver(self->m_outcomes); }, Qt::QueuedConnection);
    }
}

void CurlEngine::deliver(Outcomes& outcomes) {
    // Whoever is resumed may send, drop the client, or both; each outcome is taken out beforehand.
    while (!outcomes.empty()) {
        Outcome outcome = std::move(outcomes.front());
        outcomes.pop_front();
        outcome.deferred.resolve(std::move(outcome.result));
    }
}

CurlEngine::Socket& CurlEngine::socketFor(curl_socket_t socket) {
    auto& known = m_sockets[socket];
    if (!known) {
        known = std::make_unique<Socket>();
        known->reading.setSocket(socket);
        known->writing.setSocket(socket);
        QObject::connect(&known->reading, &QSocketNotifier::activated, &known->reading,
                         [this, socket] { act(socket, CURL_CSELECT_IN); });
        QObject::connect(&known->writing, &QSocketNotifier::activated, &known->writing,
                         [this, socket] { act(socket, CURL_CSELECT_OUT); });
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
