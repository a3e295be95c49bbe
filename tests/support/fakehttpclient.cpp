#include "tests/support/fakehttpclient.h"

namespace brimlet {

FakeHttpClient::~FakeHttpClient() {
    // An outcome may be followed by another request, which then ends at once.
    m_isClosing = true;
    for (const auto& outcome : std::exchange(m_outcomes, {})) {
        outcome.resolve(HttpError::Cancelled);
    }
}

const FakeHttpClient::Behaviour* FakeHttpClient::behaviourOf(const Url& url) const {
    for (auto it = m_behaviours.cbegin(); it != m_behaviours.cend(); ++it) {
        if (url.absoluteString().endsWith(it.key())) {
            return &it.value();
        }
    }
    return nullptr;
}

HttpResult FakeHttpClient::within(const HttpRequest& request, HttpResult result) {
    auto* const reply = std::get_if<HttpReply>(&result);
    if (reply == nullptr) {
        return result;
    }
    if (reply->status < 200 || reply->status > request.lastStatusWithBody) {
        reply->body.clear();
    } else if (reply->body.size() > request.bodyLimit) {
        return HttpError::TooLarge;
    }
    return result;
}

QCoro::Task<HttpResult> FakeHttpClient::send(HttpRequest request) {
    if (m_isClosing) {
        co_return HttpError::Cancelled;
    }
    m_requests.push_back(request);
    const Deferred<HttpResult> outcome;
    m_outcomes.push_back(outcome);
    if (const Behaviour* behaviour = behaviourOf(request.url)) {
        const bool hangs = behaviour->hangs || behaviour->lag >= request.timeout;
        const HttpResult planned = hangs ? HttpResult(HttpError::TimedOut) : behaviour->result;
        const auto delay = hangs ? request.timeout : behaviour->lag;
        if (delay.count() == 0) {
            outcome.resolve(planned);
        } else {
            m_clock.after(delay, [outcome, planned] { outcome.resolve(planned); });
        }
    }
    HttpResult result = co_await outcome;
    co_return within(request, std::move(result));
}

void FakeHttpClient::answer(const QString& path, HttpResult result, std::chrono::milliseconds lag) {
    m_behaviours.insert(path, {std::move(result), lag, false});
}

void FakeHttpClient::answer(const QString& path, int status, const QByteArray& body) {
    answer(path, HttpReply{status, body});
}

void FakeHttpClient::hang(const QString& path) {
    m_behaviours.insert(path, {HttpError::TimedOut, {}, true});
}

void FakeHttpClient::resolve(std::size_t index, HttpResult result) {
    const auto outcome = m_outcomes.at(index);
    outcome.resolve(std::move(result));
}

QStringList FakeHttpClient::log() const {
    QStringList lines;
    for (const HttpRequest& request : m_requests) {
        const QString text = request.url.absoluteString();
        const qsizetype path = text.indexOf(u'/', text.indexOf(QLatin1StringView("://")) + 3);
        lines << QString::fromLatin1(request.method) + u' ' + text.mid(path);
    }
    return lines;
}

void FakeHttpClient::clear() {
    m_requests.clear();
    std::erase_if(m_outcomes, [](const auto& outcome) { return outcome.isResolved(); });
}

} // namespace brimlet
