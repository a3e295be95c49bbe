// The requests to the placement service, and how their replies are applied.

#include "host/hoststore.h"

#include "host/heartbeatbody.h"
#include "host/linkrule.h"
#include "host/replyreading.h"
#include "host/statusline.h"

namespace brimlet {
namespace {

constexpr int kOk = 200;

/// How a request ended.
enum class Outcome {
    TransferFailed, ///< No reply, or a 200 with a body that is not JSON.
    NotAnObject,    ///< A 200 with JSON whose top level is not an object.
    OtherStatus,    ///< Any status but 200; there is no body.
    Object,
};

struct Reply {
    Outcome outcome = Outcome::TransferFailed;
    std::shared_ptr<const ReplyReader::Reading> reading;
};

Reply classified(const HttpResult& result, ReplyReader& reader) {
    const auto* const http = std::get_if<HttpReply>(&result);
    if (http == nullptr) {
        return {};
    }
    if (http->status != kOk) {
        return {Outcome::OtherStatus, nullptr};
    }
    auto reading = reader.read(http->body);
    switch (reading->kind) {
    case ReplyKind::Object:
        return {Outcome::Object, std::move(reading)};
    case ReplyKind::NotAnObject:
        return {Outcome::NotAnObject, nullptr};
    case ReplyKind::NoJson:
        break;
    }
    return {};
}

/// The display request carries no token, so its redirects may also lead to another origin that the
/// link rule allows.
bool mayFollowDisplay(const Url& from, const Url& to) {
    return isSameOrigin(from, to) || isAllowedLink(to);
}

} // namespace

SlotCreative HostStore::parseCreative(const Json& object) {
    return readCreative(object);
}

QString HostStore::apiRoot(const Bundle& bundle) {
    const QVariant root = bundle.infoDictionaryValue(QStringLiteral("BrimletAPIURL"));
    return root.typeId() == QMetaType::QString ? root.toString()
                                               : QStringLiteral("http://127.0.0.1:8791");
}

QCoro::Task<> HostStore::heartbeat() {
    return ping(QStringLiteral("/api/host/heartbeat"), "POST");
}

QCoro::Task<> HostStore::refreshDisplayThenHeartbeat() {
    const auto self = shared_from_this();
    co_await refreshDisplay();
    co_await heartbeat();
}

QCoro::Task<> HostStore::refreshEstimate() {
    const auto self = shared_from_this();
    if (m_token.isEmpty()) {
        co_await refreshDisplay();
        co_return;
    }
    co_await ping(QStringLiteral("/api/host/me"), "GET");
}

QCoro::Task<> HostStore::ping(QString path, QByteArray method) {
    const auto self = shared_from_this();
    if (!m_hasNotch) {
        publish(m_statusLine, statusline::notchedOnly());
        co_return;
    }
    if (m_token.isEmpty()) {
        co_return;
    }
    const auto url = serviceUrl(path);
    if (!url) {
        co_return;
    }
    HttpRequest request = authorisedRequest(*url, path, method);
    const HttpResult result = co_await m_ports.http.send(std::move(request));
    const Reply reply = classified(result, m_reader);
    switch (reply.outcome) {
    case Outcome::TransferFailed:
        transferFailed(path);
        break;
    case Outcome::NotAnObject:
    case Outcome::OtherStatus:
        publish(m_statusLine, statusline::tokenRejected());
        break;
    case Outcome::Object:
        apply(reply.reading->fields);
        break;
    }
}

std::optional<Url> HostStore::serviceUrl(const QString& path) {
    QString text = apiRoot(m_ports.bundle) + path;
    if (m_serviceUrl.first != text) {
        const auto url = Url::fromString(text);
        m_serviceUrl = {std::move(text), url};
    }
    return m_serviceUrl.second;
}

HttpRequest HostStore::authorisedRequest(const Url& url, const QString& path,
                                         const QByteArray& method) const {
    HttpRequest request{.url = url, .method = method};
    request.mayRevalidate = method == "GET";
    request.headers.push_back({"Authorization", "Bearer " + m_token.toUtf8()});
    if (method == "POST") {
        request.headers.push_back({"Content-Type", "application/json"});
        request.body = path.endsWith(QLatin1StringView("/heartbeat"))
                           ? heartbeatBody(isPaused(), adsVisible(), inApplications())
                           : QByteArray("{}");
    }
    return request;
}

void HostStore::transferFailed(const QString& path) {
    const bool isHeartbeat = path.endsWith(QLatin1StringView("/heartbeat"));
    // Other endpoints keep the text, but `objectWillChange()` is still emitted.
    const QString text = isHeartbeat ? statusline::heartbeatFailed() : m_statusLine;
    publish(m_statusLine, text);
}

QCoro::Task<> HostStore::refreshDisplay() {
    const auto self = shared_from_this();
    if (!m_hasNotch) {
        publish(m_statusLine, statusline::notchedOnly());
        co_return;
    }
    const auto url = serviceUrl(QStringLiteral("/api/display"));
    if (!url) {
        co_return;
    }
    HttpRequest request{.url = *url};
    request.mayRevalidate = true;
    request.mayFollow = mayFollowDisplay;
    const HttpResult result = co_await m_ports.http.send(std::move(request));
    const Reply reply = classified(result, m_reader);
    if (reply.outcome == Outcome::Object) {
        applyDisplay(reply.reading->fields);
    } else {
        publish(m_statusLine, statusline::displayFailed());
    }
}

void HostStore::applyDisplay(const ReplyFields& reply) {
    Assignment& a = m_assignment;
    publish(a.weekStatus, reply.weekStatus.value_or(QStringLiteral("unfilled")));
    publish(a.forceHide, reply.forceHide.value_or(false));
    publish(a.left, reply.left);
    publish(a.right, reply.right);
    publish(m_statusLine,
            statusline::afterDisplayReply(inApplications(), adsVisible(), !m_token.isEmpty()));
    Q_EMIT overlayNeedsRender();
}

void HostStore::apply(const ReplyFields& reply) {
    Assignment& a = m_assignment;
    publish(a.weekStatus, reply.weekStatus.value_or(QStringLiteral("unfilled")));
    publish(a.estimatedCents, reply.estimatedCents.value_or(0));
    publish(a.pendingStipendCents, reply.pendingStipendCents.value_or(0));
    publish(a.liveHostCount, reply.liveHostCount.value_or(0));
    publish(a.liveDaysThisWeek, reply.liveDaysThisWeek.value_or(0));
    publish(a.liveBucketsToday, reply.liveBucketsToday.value_or(0));
    publish(a.liveBucketsNeeded, reply.liveBucketsNeeded.value_or(4));
    publish(a.forceHide, reply.forceHide.value_or(false));
    publish(a.agreed, reply.agreed.value_or(false));
    publish(a.fromApplications, reply.fromApplications.value_or(inApplications()));
    publish(a.agreementText, reply.agreementText.value_or(a.agreementText));
    publish(a.left, reply.left);
    publish(a.right, reply.right);
    publish(m_statusLine,
            statusline::afterHostReply(inApplications(), a.agreed, adsVisible(), a.estimatedCents));
    Q_EMIT overlayNeedsRender();
}

} // namespace brimlet
