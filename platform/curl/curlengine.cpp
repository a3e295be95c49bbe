#include "platform/curl/curlengine.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>

namespace brimlet {
namespace {

/// Connections kept open between requests for each tenant, by all together.
constexpr long kIdleConnections = 4;

/// 0 where no reply came.
int statusOf(const HttpResult& result) {
    const auto* const reply = std::get_if<HttpReply>(&result);
    return reply == nullptr ? 0 : reply->status;
}

} // namespace

CurlEngine::CurlEngine(QByteArray moreAuthorities)
    : m_multi(curl_multi_init()) {
    m_commons.moreAuthorities = std::move(moreAuthorities);
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { act(CURL_SOCKET_TIMEOUT, 0); });

    CURLM* const multi = m_multi.get();
    curl_multi_setopt(multi, CURLMOPT_SOCKETFUNCTION, &CurlEngine::onSocketWanted);
    curl_multi_setopt(multi, CURLMOPT_SOCKETDATA, static_cast<void*>(this));
    curl_multi_setopt(multi, CURLMOPT_TIMERFUNCTION, &CurlEngine::onTimerWanted);
    curl_multi_setopt(multi, CURLMOPT_TIMERDATA, static_cast<void*>(this));
    curl_multi_setopt(multi, CURLMOPT_PIPELINING, long{CURLPIPE_NOTHING});
}

std::shared_ptr<CurlTenant> CurlEngine::join() {
    ++m_tenants;
    allowConnections();
    return std::make_shared<CurlTenant>(m_nextScope++);
}

void CurlEngine::allowConnections() {
    const long most = kIdleConnections * std::max(m_tenants, 1L); // 0 would mean libcurl's own rule
    curl_multi_setopt(m_multi.get(), CURLMOPT_MAXCONNECTS, most);
}

Deferred<HttpResult> CurlEngine::start(HttpRequest request, std::shared_ptr<CurlTenant> tenant) {
    auto exchange = std::make_unique<CurlExchange>(std::move(request), std::move(tenant));
    Deferred<HttpResult> outcome = exchange->outcome;
    CurlUrl address = curlAddress(exchange->request.url);
    if (exchange->tenant->isGone) {
        outcome.resolve(HttpError::Cancelled);
    } else if (!isSendable(exchange->request) || !address) {
        outcome.resolve(HttpError::BadRequest);
    } else {
        exchange->memo = exchange->tenant->replies.recall(exchange->request);
        startHop(std::move(exchange), std::move(address));
    }
    return outcome;
}

void CurlEngine::startHop(std::unique_ptr<CurlExchange> exchange, CurlUrl address) {
    const std::chrono::milliseconds left(exchange->deadline.remainingTime());
    if (left.count() == 0) {
        finish(*exchange, HttpError::TimedOut);
        return;
    }
    const HttpRequest request = exchange->hopRequest();
    auto hop =
        std::make_unique<CurlHop>(request, std::move(address), left, m_commons, exchange->tenant);
    if (!hop->isReady() || curl_multi_add_handle(m_multi.get(), hop->handle()) != CURLM_OK) {
        finish(*exchange, HttpError::Unreachable);
        return;
    }
    hop->exchange = std::move(exchange);
    CurlHop& started = *hop;
    started.place = m_hops.insert(m_hops.end(), std::move(hop));
}

void CurlEngine::leave(CurlTenant& tenant) {
    tenant.isGone = true;
    Outcomes cancelled;
    for (Outcome& outcome : std::exchange(m_outcomes, {})) {
        const bool isOwn = outcome.tenant.get() == &tenant;
        (isOwn ? cancelled : m_outcomes).push_back(std::move(outcome));
    }
    for (auto next = m_hops.begin(); next != m_hops.end();) {
        CurlHop& hop = **next++;
        if (hop.tenant() != &tenant) {
            continue;
        }
        if (hop.exchange) {
            cancelled.push_back(
                {hop.exchange->outcome, hop.exchange->tenant, HttpError::Cancelled});
        }
        drop(hop);
    }
    --m_tenants;
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
    endHops();

    struct Settled {
        std::unique_ptr<CurlExchange> exchange;
        HttpResult result;
        CurlHead head;
    };
    std::vector<Settled> settled;
    for (CurlHop* const hop : std::exchange(m_commons.news, {})) {
        hop->setSeen();
        if (hop->exchange && hop->isSettled()) {
            settled.push_back({std::move(hop->exchange), hop->takeResult(), hop->head()});
        }
        if (!hop->exchange && hop->isSpent()) {
            drop(*hop);
        }
    }
    for (Settled& one : settled) {
        settle(std::move(one.exchange), std::move(one.result), one.head);
    }
}

void CurlEngine::endHops() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        CurlHop* hop = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &hop);
        hop->end(message->data.result);
    }
}

void CurlEngine::drop(const CurlHop& hop) {
    curl_multi_remove_handle(m_multi.get(), hop.handle());
    std::erase(m_commons.news, &hop); // libcurl may have had a last word
    m_hops.erase(hop.place);
}

void CurlEngine::settle(std::unique_ptr<CurlExchange> exchange, HttpResult result,
                        const CurlHead& head) {
    CurlTenant& tenant = *exchange->tenant;
    if (exchange->memo.kept && statusOf(result) == 304) {
        ++m_commons.traffic.notModified;
    }
    result = tenant.replies.settled(exchange->memo, std::move(result), head.validators());
    const auto* const reply = std::get_if<HttpReply>(&result);
    CurlUrl target;
    if (reply != nullptr && !tenant.isGone) {
        target = exchange->redirect(reply->status, head.location());
    }
    if (target && !tenant.isGone) { // the rule may have dropped the client
        startHop(std::move(exchange), std::move(target));
    } else {
        finish(*exchange, std::move(result));
    }
}

void CurlEngine::finish(const CurlExchange& exchange, HttpResult result) {
    if (exchange.tenant->isGone) {
        result = HttpError::Cancelled;
    }
    m_outcomes.push_back({exchange.outcome, exchange.tenant, std::move(result)});
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
