#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QByteArray kSame = "HTTP/1.1 304 Not Modified\r\n\r\n";
constexpr qsizetype kLongestBody = qsizetype{64} * 1024;

HttpRequest poll(const Url& url) {
    HttpRequest request = requestTo(url);
    request.timeout = 5s;
    request.mayRevalidate = true;
    return request;
}

QByteArray good(const QByteArray& body, const QByteArray& tag = "\"a\"") {
    return rawReply(200, body, "ETag: " + tag + "\r\n");
}

bool isReply(const std::optional<HttpResult>& result, int status, const QByteArray& body) {
    return result == HttpResult(HttpReply{status, body});
}

} // namespace

/// Which replies are kept for conditional requests, and for how long.
class TestHttpKeptReplies final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void onlyAShortBodyIsKept_data() {
        QTest::addColumn<qsizetype>("size");
        QTest::addColumn<bool>("isKept");
        QTest::newRow("empty") << qsizetype{0} << true;
        QTest::newRow("just below") << kLongestBody - 1 << true;
        QTest::newRow("at") << kLongestBody << true;
        QTest::newRow("just above") << kLongestBody + 1 << false;
    }

    void onlyAShortBodyIsKept() {
        QFETCH(const qsizetype, size);
        QFETCH(const bool, isKept);
        const QByteArray body(size, 'x');
        RawServer server;
        server.answer({}, good(body));
        CurlHttpClient client;
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, body));
        server.answer({}, isKept ? kSame : good(body));
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, body));
        QCOMPARE(server.requests().at(1).header("If-None-Match").isNull(), !isKept);
    }

    void eightRepliesAreKeptAndTheLeastRecentlyUsedIsDropped() {
        RawServer server;
        server.answer({}, [](RawConnection& connection, const RawRequest& request) {
            connection.send(request.header("If-None-Match").isNull() ? good("x") : kSame);
        });
        CurlHttpClient client;
        const auto isConditional = [&](int number) {
            (void)fetch(client, poll(server.url(u"/%1"_s.arg(number))));
            return !server.requests().back().header("If-None-Match").isNull();
        };
        for (int i = 1; i <= 8; ++i) {
            QVERIFY(!isConditional(i));
        }
        QVERIFY(isConditional(1)); // used, so 2 is the next to be dropped
        QVERIFY(!isConditional(9));
        QVERIFY(isConditional(1));
        for (int i = 3; i <= 9; ++i) {
            QVERIFY(isConditional(i));
        }
        QVERIFY(!isConditional(2));
    }

    void theOutcomeDecidesWhetherTheKeptReplyStays_data() {
        QTest::addColumn<QByteArray>("reply");     // empty: none
        QTest::addColumn<QByteArray>("condition"); // of the request after it
        const QByteArray a = "\"a\"";
        QTest::newRow("the same") << kSame << a;
        QTest::newRow("the same, by name")
            << QByteArray("HTTP/1.1 304 Same\r\nETag: W/\"a\"\r\n\r\n") << a;
        QTest::newRow("the same, by another name")
            << QByteArray("HTTP/1.1 304 Same\r\nETag: \"c\"\r\n\r\n") << QByteArray();
        QTest::newRow("a new one") << good("new", "\"b\"") << QByteArray("\"b\"");
        QTest::newRow("a new one without a tag") << rawReply(200, "new") << QByteArray();
        QTest::newRow("a new one not to be kept")
            << rawReply(200, "new", "ETag: \"b\"\r\nCache-Control: no-store\r\n") << QByteArray();
        for (const int status : {201, 204, 206, 302, 401, 403, 404, 410, 429}) {
            QTest::addRow("%d", status) << rawReply(status, "", "ETag: \"b\"\r\n") << QByteArray();
        }
        for (const int status : {500, 502, 503, 504}) {
            QTest::addRow("%d", status) << rawReply(status, "", "ETag: \"b\"\r\n") << a;
        }
        QTest::newRow("none") << QByteArray() << a;
        QTest::newRow("a cut one")
            << QByteArray("HTTP/1.1 200 OK\r\nETag: \"b\"\r\nContent-Length: 9\r\n\r\nne") << a;
        QTest::newRow("a cut 304") << QByteArray("HTTP/1.1 304 Same\r\nETag: \"b\"\r\n") << a;
    }

    void theOutcomeDecidesWhetherTheKeptReplyStays() {
        QFETCH(const QByteArray, reply);
        QFETCH(const QByteArray, condition);
        RawServer server;
        server.answer({}, good("old"));
        CurlHttpClient client;
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "old"));
        server.answerAndCut({}, reply);
        QVERIFY(fetch(client, poll(server.url(u"/a"_s))).has_value());
        QCOMPARE(server.requests().back().header("If-None-Match"), "\"a\"");
        server.answer({}, good("whole"));
        QVERIFY(fetch(client, poll(server.url(u"/a"_s))).has_value());
        QCOMPARE(server.requests().back().header("If-None-Match"), condition);
    }

    void redirectTargetsGetNoConditionAndAreNotKept() {
        RawServer server;
        server.answer("/a", good("x"));
        CurlHttpClient client;
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "x"));
        server.answer("/a", rawReply(302, "", "Location: /b\r\nETag: \"r\"\r\n"));
        server.answer("/b", good("y", "\"b\""));
        for (int i = 0; i < 3; ++i) {
            QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "y"));
        }
        QCOMPARE(server.requests().size(), 7U);
        QCOMPARE(server.requests().at(1).header("If-None-Match"), "\"a\"");
        for (std::size_t i = 2; i < 7; ++i) {
            QVERIFY(server.requests().at(i).header("If-None-Match").isNull());
        }
        server.answer("/b", kSame);
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 304, {}));
    }

    void overlappingConditionalRequestsAreAllAnswered() {
        RawServer server;
        server.answer({}, good("old"));
        CurlHttpClient client;
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "old"));
        server.answer({}, RawAnswer());
        const Awaited first(client.send(poll(server.url(u"/a"_s))));
        const Awaited second(client.send(poll(server.url(u"/a"_s))));
        const Awaited third(client.send(poll(server.url(u"/a"_s))));
        QTRY_COMPARE(server.requests().size(), 4U);
        QCOMPARE(server.connections(), 3);
        server.connection(2).send(kSame);
        QTRY_VERIFY(third.isDone());
        QVERIFY(isReply(third.result(), 200, "old"));
        server.connection(1).send(good("new", "\"b\""));
        QTRY_VERIFY(second.isDone());
        QVERIFY(isReply(second.result(), 200, "new"));
        server.connection(0).send(kSame); // its condition has been replaced meanwhile
        QTRY_VERIFY(first.isDone());
        QVERIFY(isReply(first.result(), 200, "old"));

        server.answer({}, kSame);
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "new"));
        QCOMPARE(server.requests().back().header("If-None-Match"), "\"b\"");
    }
};

BRIMLET_TEST(TestHttpKeptReplies, QCoreApplication)
#include "tst_httpkeptreplies.moc"
