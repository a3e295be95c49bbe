#include "tests/support/httpcontract.h"

#include "platform/starttask.h"

#include <QTest>

#include <algorithm>

namespace brimlet {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

HttpRequest get(const HttpPeer& peer, const QString& path) {
    HttpRequest request = requestTo(peer.url(path));
    request.timeout = 5s;
    return request;
}

void aReplyCarriesStatusAndBody(HttpPeer& peer) {
    peer.answer(u"/good"_s, 200, "{\"a\":1}");
    const auto result = fetch(peer.client(), get(peer, u"/good"_s));
    QVERIFY(result == HttpResult(HttpReply{200, "{\"a\":1}"}));
    QCOMPARE(peer.log(), QStringList{u"GET /good"_s});
}

void anotherStatusIsAnOutcomeWithoutABody(HttpPeer& peer) {
    peer.answer(u"/gone"_s, 404, "{\"a\":1}");
    const auto result = fetch(peer.client(), get(peer, u"/gone"_s));
    QVERIFY(result == HttpResult(HttpReply{404, {}}));
}

void anUnchangedReplyIsTheSameReply(HttpPeer& peer) {
    HttpRequest request = get(peer, u"/poll"_s);
    request.mayRevalidate = true;
    for (const QByteArray body : {"{\"a\":1}", "{\"a\":2}"}) {
        peer.answerTagged(u"/poll"_s, body);
        for (int i = 0; i < 3; ++i) {
            QVERIFY(fetch(peer.client(), request) == HttpResult(HttpReply{200, body}));
        }
    }
    QCOMPARE(peer.log(), QStringList(6, u"GET /poll"_s));
}

void a304WithoutAConditionStaysA304(HttpPeer& peer) {
    peer.answer(u"/same"_s, 304, {});
    HttpRequest request = get(peer, u"/same"_s);
    request.mayRevalidate = true;
    QVERIFY(fetch(peer.client(), request) == HttpResult(HttpReply{304, {}}));
    request.mayRevalidate = false;
    QVERIFY(fetch(peer.client(), request) == HttpResult(HttpReply{304, {}}));
}

void aBodyBeyondTheLimitIsTooLarge(HttpPeer& peer) {
    peer.answer(u"/long"_s, 200, "12345");
    HttpRequest request = get(peer, u"/long"_s);
    request.bodyLimit = 5;
    QVERIFY(fetch(peer.client(), request) == HttpResult(HttpReply{200, "12345"}));
    request.bodyLimit = 4;
    QVERIFY(fetch(peer.client(), request) == HttpResult(HttpError::TooLarge));
}

void anUnansweredRequestEndsAtItsDeadline(HttpPeer& peer) {
    peer.hang(u"/never"_s);
    HttpRequest request = get(peer, u"/never"_s);
    request.timeout = 600ms;
    const Awaited reply(peer.client().send(std::move(request)));
    peer.pass(300ms);
    QVERIFY(!reply.isDone());
    peer.pass(700ms);
    QTRY_VERIFY(reply.isDone());
    QVERIFY(reply.result() == HttpResult(HttpError::TimedOut));
}

void requestsOverlap(HttpPeer& peer) {
    peer.hang(u"/never"_s);
    peer.answer(u"/good"_s, 200, "x");
    std::vector<Awaited> waiting;
    waiting.reserve(30);
    for (int i = 0; i < 30; ++i) {
        waiting.emplace_back(peer.client().send(get(peer, u"/never"_s)));
    }
    QTRY_COMPARE(peer.log().size(), 30);
    const auto result = fetch(peer.client(), get(peer, u"/good"_s));
    QVERIFY(result == HttpResult(HttpReply{200, "x"}));
    QVERIFY(
        std::none_of(waiting.cbegin(), waiting.cend(), [](const auto& w) { return w.isDone(); }));
    peer.dropClient();
}

void destroyingTheClientEndsItsRequests(HttpPeer& peer) {
    peer.hang(u"/never"_s);
    const Awaited first(peer.client().send(get(peer, u"/never"_s)));
    const Awaited second(peer.client().send(get(peer, u"/never"_s)));
    QTRY_COMPARE(peer.log().size(), 2);
    peer.dropClient();
    QVERIFY(first.isDone());
    QVERIFY(second.isDone());
    QVERIFY(first.result() == HttpResult(HttpError::Cancelled));
    QVERIFY(second.result() == HttpResult(HttpError::Cancelled));
}

QCoro::Task<> sendInTurn(HttpClient& client, HttpRequest request, int times,
                         std::shared_ptr<std::vector<HttpResult>> results) {
    for (int i = 0; i < times; ++i) {
        HttpRequest copy = request;
        results->push_back(co_await client.send(std::move(copy)));
    }
}

void theReceiverOfAnOutcomeMaySendAgain(HttpPeer& peer) {
    peer.answer(u"/good"_s, 200, "x");
    const auto results = std::make_shared<std::vector<HttpResult>>();
    startTask(sendInTurn(peer.client(), get(peer, u"/good"_s), 5, results));
    QTRY_COMPARE(results->size(), 5U);
    for (const HttpResult& result : *results) {
        QVERIFY(result == HttpResult(HttpReply{200, "x"}));
    }
}

void aRequestSentWhileTheClientIsDestroyedEndsAtOnce(HttpPeer& peer) {
    peer.hang(u"/never"_s);
    const auto results = std::make_shared<std::vector<HttpResult>>();
    startTask(sendInTurn(peer.client(), get(peer, u"/never"_s), 3, results));
    QTRY_COMPARE(peer.log().size(), 1);
    peer.dropClient();
    QVERIFY(*results == std::vector<HttpResult>(3, HttpError::Cancelled));
}

QCoro::Task<> sendAndDropClient(HttpPeer& peer, HttpRequest request) {
    (void)co_await peer.client().send(std::move(request));
    peer.dropClient();
}

void theReceiverOfAnOutcomeMayDestroyTheClient(HttpPeer& peer) {
    peer.hang(u"/never"_s);
    const Awaited other(peer.client().send(get(peer, u"/never"_s)));
    HttpRequest brief = get(peer, u"/never"_s);
    brief.timeout = 100ms;
    startTask(sendAndDropClient(peer, std::move(brief)));
    peer.pass(200ms);
    QTRY_VERIFY(other.isDone());
    QVERIFY(other.result() == HttpResult(HttpError::Cancelled));
}

QCoro::Task<> keep(QCoro::Task<HttpResult> task, std::shared_ptr<std::optional<HttpResult>> into) {
    *into = co_await task;
}

} // namespace

Awaited::Awaited(QCoro::Task<HttpResult>&& task) {
    startTask(keep(std::move(task), m_result));
}

HttpRequest requestTo(const Url& url, const QByteArray& method) {
    return {.url = url, .method = method};
}

HttpRequest authorised(const Url& url, const QByteArray& method) {
    HttpRequest request = requestTo(url, method);
    request.headers = {{"Authorization", "Bearer t0ken"}};
    request.timeout = 5s;
    return request;
}

Url urlOf(const char* text) {
    return Url::fromString(QString::fromLatin1(text)).value();
}

std::optional<HttpResult> fetch(HttpClient& client, HttpRequest request) {
    const Awaited reply(client.send(std::move(request)));
    const bool isDone = QTest::qWaitFor([&reply] { return reply.isDone(); }, 10'000);
    return isDone ? std::optional(reply.result()) : std::nullopt;
}

namespace {

struct HttpCheck final {
    const char* name;
    void (*run)(HttpPeer& peer);
};

const std::vector<HttpCheck>& httpContract() {
    static const std::vector<HttpCheck> checks{
        {"a reply carries status and body", aReplyCarriesStatusAndBody},
        {"another status is an outcome without a body", anotherStatusIsAnOutcomeWithoutABody},
        {"an unchanged reply is the same reply", anUnchangedReplyIsTheSameReply},
        {"a 304 without a condition stays a 304", a304WithoutAConditionStaysA304},
        {"a body beyond the limit is too large", aBodyBeyondTheLimitIsTooLarge},
        {"an unanswered request ends at its deadline", anUnansweredRequestEndsAtItsDeadline},
        {"requests overlap", requestsOverlap},
        {"destroying the client ends its requests", destroyingTheClientEndsItsRequests},
        {"the receiver of an outcome may send again", theReceiverOfAnOutcomeMaySendAgain},
        {"a request sent while the client is destroyed ends at once",
         aRequestSentWhileTheClientIsDestroyedEndsAtOnce},
        {"the receiver of an outcome may destroy the client",
         theReceiverOfAnOutcomeMayDestroyTheClient},
    };
    return checks;
}

} // namespace

void addHttpContractRows() {
    QTest::addColumn<std::size_t>("check");
    for (std::size_t i = 0; i < httpContract().size(); ++i) {
        QTest::newRow(httpContract()[i].name) << i;
    }
}

void runHttpContractRow(HttpPeer& peer) {
    QFETCH(const std::size_t, check);
    httpContract()[check].run(peer);
}

} // namespace brimlet
