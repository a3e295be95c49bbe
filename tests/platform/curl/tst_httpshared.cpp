#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <algorithm>
#include <map>
#include <set>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Clients = std::vector<std::unique_ptr<CurlHttpClient>>;

Clients siblings(int count) {
    Clients clients;
    clients.push_back(std::make_unique<CurlHttpClient>());
    for (int i = 1; i < count; ++i) {
        clients.push_back(clients.front()->makeSibling());
    }
    return clients;
}

/// A request with the number of its client in a header.
HttpRequest from(int client, const Url& url) {
    HttpRequest request = requestTo(url);
    request.headers.push_back({"X-Client", QByteArray::number(client)});
    return request;
}

/// Answers all requests and records which clients used each connection.
class ClientRecorder final {
public:
    explicit ClientRecorder(RawServer& server) {
        server.answer({}, [this](RawConnection& connection, const RawRequest& request) {
            byConnection[&connection].insert(request.header("X-Client"));
            connection.send(rawReply(200, "x"));
        });
    }

    std::map<const RawConnection*, std::set<QByteArray>> byConnection;
};

} // namespace

/// Clients that share an engine, and what they do not share.
class TestHttpShared final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void eachClientKeepsOneConnectionOfItsOwn_data() {
        QTest::addColumn<bool>("isNamed");
        QTest::newRow("by address") << false;
        QTest::newRow("by name") << true;
    }

    void eachClientKeepsOneConnectionOfItsOwn() {
        QFETCH(const bool, isNamed);
        constexpr int kClients = 8;
        RawServer server;
        const ClientRecorder recorder(server);
        Url url = server.url(u"/"_s);
        if (isNamed) {
            url = *Url::fromString(u"http://localhost:%1/"_s.arg(server.port()));
        }
        const Clients clients = siblings(kClients);
        for (int round = 0; round < 3; ++round) {
            for (int i = 0; i < kClients; ++i) {
                QVERIFY(fetch(*clients.at(static_cast<std::size_t>(i)), from(i, url)) ==
                        HttpResult(HttpReply{200, "x"}));
            }
        }
        QCOMPARE(server.connections(), kClients);
        QCOMPARE(server.openConnections(), kClients);
        for (const auto& [connection, who] : recorder.byConnection) {
            QCOMPARE(who.size(), 1U);
        }
    }

    void anIdleConnectionIsNotUsedByAnotherClient() {
        RawServer server;
        const ClientRecorder recorder(server);
        const Clients clients = siblings(2);
        const Url url = server.url(u"/"_s);
        QVERIFY(fetch(*clients[0], from(0, url)).has_value());
        QVERIFY(fetch(*clients[1], from(1, url)).has_value());
        QCOMPARE(server.connections(), 2);
        // The first has two requests under way, and the second's connection is idle.
        const Awaited one(clients[0]->send(from(0, url)));
        const Awaited two(clients[0]->send(from(0, url)));
        QTRY_VERIFY(one.isDone() && two.isDone());
        QCOMPARE(server.connections(), 3);
        for (const auto& [connection, who] : recorder.byConnection) {
            QCOMPARE(who.size(), 1U);
        }
    }

    void keptRepliesAreNotShared() {
        RawServer server;
        server.answer({}, rawReply(200, "x", "ETag: \"a\"\r\n"));
        const Clients clients = siblings(2);
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.mayRevalidate = true;
        QVERIFY(fetch(*clients[0], request).has_value());
        QVERIFY(fetch(*clients[1], request).has_value());
        QVERIFY(fetch(*clients[0], request).has_value());
        QVERIFY(server.requests().at(1).header("If-None-Match").isNull());
        QCOMPARE(server.requests().at(2).header("If-None-Match"), "\"a\"");
    }

    void destroyingAClientEndsOnlyItsOwnRequests() {
        RawServer server;
        server.answer("/slow", RawAnswer());
        server.answer("/quick", rawReply(200, "quick"));
        Clients clients = siblings(2);
        const Awaited going(clients[0]->send(requestTo(server.url(u"/slow"_s))));
        const Awaited staying(clients[1]->send(requestTo(server.url(u"/slow"_s))));
        QTRY_COMPARE(server.requests().size(), 2U);
        clients[0].reset();
        QVERIFY(going.isDone());
        QVERIFY(going.result() == HttpResult(HttpError::Cancelled));
        QVERIFY(!staying.isDone());
        QTRY_COMPARE(server.openConnections(), 1);
        for (int i = 0; i < 2; ++i) {
            if (server.connection(i).isOpen()) {
                server.connection(i).send(rawReply(200, "late"));
            }
        }
        QTRY_VERIFY(staying.isDone());
        QVERIFY(staying.result() == HttpResult(HttpReply{200, "late"}));
        QVERIFY(fetch(*clients[1], requestTo(server.url(u"/quick"_s))) ==
                HttpResult(HttpReply{200, "quick"}));
    }

    void destroyingAClientCancelsOnlyItsOwnUndeliveredOutcomes() {
        Clients clients = siblings(2);
        HttpRequest late = requestTo(RawServer().url(u"/"_s));
        late.timeout = 0s; // expires at once, but is delivered in a later turn
        const Awaited going(clients[0]->send(late));
        const Awaited staying(clients[1]->send(late));
        QVERIFY(!going.isDone() && !staying.isDone());
        clients[0].reset();
        QVERIFY(going.isDone());
        QVERIFY(going.result() == HttpResult(HttpError::Cancelled));
        QVERIFY(!staying.isDone());
        QTRY_VERIFY(staying.isDone());
        QVERIFY(staying.result() == HttpResult(HttpError::TimedOut));
    }

    void theLimitOnUnfinishedBodiesIsNotShared() {
        constexpr qsizetype kMebibyte = qsizetype{1024} * 1024;
        constexpr int kUnfinished = 17; // one more than fit
        RawServer server;
        server.answer("/unfinished", "HTTP/1.1 200 OK\r\nContent-Length: 1048576\r\n\r\n" +
                                         QByteArray(kMebibyte - 1, 'x'));
        server.answer("/large", rawReply(200, QByteArray(kMebibyte, 'x')));
        const Clients clients = siblings(2);
        std::vector<Awaited> unfinished;
        unfinished.reserve(kUnfinished);
        for (int i = 0; i < kUnfinished; ++i) {
            unfinished.emplace_back(clients[0]->send(requestTo(server.url(u"/unfinished"_s))));
        }
        const auto hasOneFailed = [&] {
            return std::any_of(unfinished.begin(), unfinished.end(),
                               [](const Awaited& one) { return one.isDone(); });
        };
        QTRY_VERIFY(hasOneFailed()); // the first client's limit is reached
        QVERIFY(fetch(*clients[1], requestTo(server.url(u"/large"_s))) ==
                HttpResult(HttpReply{200, QByteArray(kMebibyte, 'x')}));
    }

    void unrequestedBytesCloseOneConnectionAndSpoilNoReply() {
        constexpr int kClients = 5;
        RawServer server;
        server.answer({}, rawReply(200, "good"));
        const Clients clients = siblings(kClients);
        const auto everyoneFetches = [&] {
            return std::all_of(clients.begin(), clients.end(), [&](const auto& client) {
                return fetch(*client, requestTo(server.url(u"/"_s))) ==
                       HttpResult(HttpReply{200, "good"});
            });
        };
        QVERIFY(everyoneFetches());
        QCOMPARE(server.connections(), kClients);
        server.connection(2).send("HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\nintruder");
        QVERIFY(everyoneFetches());
        QVERIFY(everyoneFetches());
        QCOMPARE(server.connections(), kClients + 1);
    }

    void everyByteIsCountedForItsClient() {
        RawServer server;
        const QByteArray reply = rawReply(200, "words", "ETag: \"a\"\r\n");
        const QByteArray same = "HTTP/1.1 304 Same\r\n\r\n";
        server.answer({}, reply);
        const Clients clients = siblings(2);
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.mayRevalidate = true;
        QVERIFY(fetch(*clients[0], request).has_value());
        server.answer({}, same);
        QVERIFY(fetch(*clients[0], request).has_value());
        HttpRequest post = requestTo(server.url(u"/"_s), "POST");
        post.body = "{}";
        server.answer({}, rawReply(200, ""));
        QVERIFY(fetch(*clients[1], post).has_value());

        CurlTraffic both = clients[0]->traffic();
        both += clients[1]->traffic();
        QCOMPARE(both.bytesSent, server.received().size());
        QCOMPARE(both.bytesReceived, reply.size() + same.size() + rawReply(200, "").size());
        QCOMPARE(clients[0]->traffic().connections, 1);
        QCOMPARE(clients[1]->traffic().connections, 1);
        QCOMPARE(clients[0]->traffic().notModified, 1);
        QCOMPARE(clients[1]->traffic().notModified, 0);
    }
};

BRIMLET_TEST(TestHttpShared, QCoreApplication)
#include "tst_httpshared.moc"
