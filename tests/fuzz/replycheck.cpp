#include "tests/fuzz/replycheck.h"

#include "host/json.h"
#include "host/statusline.h"
#include "tests/fuzz/secondreading.h"
#include "tests/support/hostfixture.h"

#include <algorithm>

namespace brimlet {
namespace {

struct Endpoint final {
    QString path;
    bool hasToken = true;
};

Endpoint chosenEndpoint(char choice) {
    switch (choice) {
    case 'm':
        return {.path = QStringLiteral("/api/host/me")};
    case 'h':
        return {.path = QStringLiteral("/api/host/heartbeat")};
    default:
        return {.path = QStringLiteral("/api/display"), .hasToken = choice == 'D'};
    }
}

bool isDisplay(const Endpoint& endpoint) {
    return endpoint.path == QLatin1StringView("/api/display");
}

void exchange(HostFixture& host, HostStore& store, const QString& path, const QByteArray& body) {
    host.http.answer(path, 200, body);
    startTask(path == QLatin1StringView("/api/display") ? store.refreshDisplay()
                                                        : store.ping(path, "GET"));
}

/// Fills the store before the reply under test, so that no field has its default.
void fill(HostFixture& host, HostStore& store) {
    const QByteArray creatives = R"("weekStatus":"live","forceHide":true,"creatives":[)"
                                 R"({"slotId":"left","brandName":"L"},{"slotId":"right"}])";
    exchange(host, store, QStringLiteral("/api/display"), '{' + creatives + '}');
    exchange(host, store, QStringLiteral("/api/host/me"),
             R"({"estimatedCents":1,"pendingStipendCents":2,"liveHostCount":3,)"
             R"("liveDaysThisWeek":5,"liveBucketsToday":6,"liveBucketsNeeded":7,"agreed":true,)"
             R"("fromApplications":false,"agreementText":"A",)" +
                 creatives + '}');
}

QString expectedStatusLine(const Endpoint& endpoint, const std::optional<Json>& json,
                           const HostStore& store, const QString& before) {
    const bool isObject = json && json->is_object();
    if (isDisplay(endpoint)) {
        return isObject ? statusline::afterDisplayReply(true, store.adsVisible(), endpoint.hasToken)
                        : statusline::displayFailed();
    }
    if (!json) {
        return endpoint.path.endsWith(QLatin1StringView("heartbeat"))
                   ? statusline::heartbeatFailed()
                   : before;
    }
    const Assignment& a = store.assignment();
    return isObject
               ? statusline::afterHostReply(true, a.agreed, store.adsVisible(), a.estimatedCents)
               : statusline::tokenRejected();
}

bool isWellFormed(const std::optional<Url>& url) {
    return !url || Url::fromString(url->absoluteString()) == url;
}

bool isWellFormed(const std::optional<SlotCreative>& creative) {
    return !creative || (creative->brandName.isValidUtf16() && creative->tagline.isValidUtf16() &&
                         isWellFormed(creative->assetURL) && isWellFormed(creative->brandURL));
}

bool isWellFormed(const Assignment& a) {
    return a.weekStatus.isValidUtf16() && a.agreementText.isValidUtf16() && isWellFormed(a.left) &&
           isWellFormed(a.right);
}

/// True when the value, written and read again, is the same. Writing recurses, as nothing in the
/// product does, so a deeply nested value is not tried.
bool survivesWriting(const QByteArray& body, const Json& json) {
    constexpr int kDeepest = 500;
    if (body.count('[') + body.count('{') > kDeepest) {
        return true;
    }
    const std::string text = json.dump();
    const auto again = parseJson(QByteArray::fromStdString(text));
    return again && *again == json;
}

} // namespace

QByteArray checkReply(const QByteArray& input) {
    const Endpoint endpoint = chosenEndpoint(input.isEmpty() ? 'd' : input.front());
    // Not a copy, so that a sanitizer detects reads past the end.
    const qsizetype start = input.isEmpty() ? 0 : 1;
    const auto body = QByteArray::fromRawData(input.constData() + start, input.size() - start);
    HostFixture host;
    if (endpoint.hasToken) {
        host.keepToken("token");
    }
    const auto store = host.makeStore();
    fill(host, *store);
    const Assignment before = store->assignment();
    const QString lineBefore = store->statusLine();
    exchange(host, *store, endpoint.path, body);

    const std::optional<Json> json = parseJson(body);
    const Assignment& a = store->assignment();
    if ((!json || !json->is_object()) && a != before) {
        return "a refused body changed the assignment";
    }
    if (store->statusLine() != expectedStatusLine(endpoint, json, *store, lineBefore)) {
        return "the status line is another";
    }
    if (!isWellFormed(a)) {
        return "a text or an address is malformed";
    }
    if (json && !survivesWriting(body, *json)) {
        return "written out and read again it is another value";
    }
    if (json && json->is_object()) {
        return isDisplay(endpoint) ? secondReadingOfDisplay(body, a)
                                   : secondReadingOfHost(body, a, before.agreementText);
    }
    return {};
}

} // namespace brimlet
