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

HttpRequest poll(const Url& url, const QByteArray& token = "t0ken") {
    HttpRequest request = requestTo(url);
    request.headers = {{"Authorization", "Bearer " + token}};
    request.timeout = 5s;
    request.mayRevalidate = true;
    return request;
}

/// A 200 with the tag, or `same` for a request with that tag as its condition.
RawAnswer tagged(const QByteArray& tag, const QByteArray& body, const QByteArray& same = kSame) {
    return [=](RawConnection& connection, const RawRequest& request) {
        connection.send(request.header("If-None-Match") == tag
                            ? same
                            : rawReply(200, body, "ETag: " + tag + "\r\n"));
    };
}

/// The value of the request's condition; empty for none.
QByteArray condition(const RawServer& server, std::size_t index) {
    const RawRequest& request = server.requests().at(index);
    return request.header("If-None-Match") + request.header("If-Modified-Since");
}

bool isReply(const std::optional<HttpResult>& result, int status, const QByteArray& body) {
    return result == HttpResult(HttpReply{status, body});
}

} // namespace

/// Which requests are conditional, and how a 304 is applied.
class TestHttpConditional final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void anUnchangedPollCostsLessThan400Bytes() {
        const QByteArray same =
            "HTTP/1.1 304 Not Modified\r\n"
            "Date: Sat, 01 Aug 2026 10:00:00 GMT\r\nETag: \"5d8c72a5edda8d6a\"\r\n"
            "Content-Length: 20000\r\n\r\n"; // the length of the 200's body
        RawServer server;
        server.answer({}, tagged("\"5d8c72a5edda8d6a\"", QByteArray(20'000, 'x'), same));
        CurlHttpClient client;
        for (int i = 0; i < 10; ++i) {
            const qsizetype before = server.received().size();
            QVERIFY(isReply(fetch(client, poll(server.url(u"/api/host/me"_s))), 200,
                            QByteArray(20'000, 'x')));
            QVERIFY(i == 0 || server.received().size() - before + same.size() < 400);
        }
        QCOMPARE(server.requests().size(), 10U);
        QCOMPARE(server.connections(), 1);
    }

    void aConditionalRequestAddsOnlyTheValidator_data() {
        QTest::addColumn<QByteArray>("headers");
        QTest::addColumn<QByteArray>("line"); // empty: no condition
        const QByteArray date = "Sat, 01 Aug 2026 10:00:00 GMT";
        const QByteArray dated = "Last-Modified: " + date + "\r\n";
        const QByteArray tag = "ETag: \"a\"\r\n";
        QTest::newRow("strong") << tag << QByteArray("If-None-Match: \"a\"");
        QTest::newRow("weak") << QByteArray("etag:W/\"a\"  \r\n")
                              << QByteArray("If-None-Match: W/\"a\"");
        QTest::newRow("date") << dated << "If-Modified-Since: " + date;
        QTest::newRow("both") << dated + tag << QByteArray("If-None-Match: \"a\"");
        QTest::newRow("malformed") << QByteArray("ETag: a\r\n") << QByteArray();
        QTest::newRow("malformed, and a date")
            << "ETag: a\r\n" + dated << "If-Modified-Since: " + date;
        QTest::newRow("control byte") << QByteArray("ETag: \"a\x01\"\r\n") << QByteArray();
        QTest::newRow("carriage return") << QByteArray("ETag: \"a\rX: y\"\r\n") << QByteArray();
        QTest::newRow("folded") << QByteArray("ETag:\r\n \"a\"\r\n") << QByteArray();
        QTest::newRow("too long") << "ETag: \"" + QByteArray(255, 'x') + "\"\r\n" << QByteArray();
        QTest::newRow("twice") << tag + tag << QByteArray();
        QTest::newRow("not to be kept") << tag + "Cache-Control: no-store\r\n" << QByteArray();
        QTest::newRow("varies with anything") << tag + "Vary: *\r\n" << QByteArray();
        QTest::newRow("none") << QByteArray() << QByteArray();
    }

    void aConditionalRequestAddsOnlyTheValidator() {
        QFETCH(const QByteArray, headers);
        QFETCH(const QByteArray, line);
        RawServer server;
        server.answer({}, rawReply(200, "x", headers));
        CurlHttpClient client;
        const HttpRequest request = poll(server.url(u"/a"_s));
        QVERIFY(isReply(fetch(client, request), 200, "x"));
        QVERIFY(isReply(fetch(client, request), 200, "x"));
        QList<QByteArray> expected = server.requests().at(0).lines();
        if (!line.isEmpty()) {
            expected << line;
        }
        QCOMPARE(server.requests().at(1).lines(), expected);
    }

    void theTagOfAnInterimReplyIsIgnored() {
        RawServer server;
        server.answer({}, "HTTP/1.1 103 Hints\r\nETag: \"a\"\r\n\r\n" + rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "x"));
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "x"));
        QCOMPARE(condition(server, 1), QByteArray());
    }

    void onlyTheSameRequestIsMadeConditional_data() {
        QTest::addColumn<QByteArray>("what");
        for (const char* what : {"same", "token", "header", "address", "query", "POST", "HEAD",
                                 "body", "unasked", "own tag", "own date", "range", "less room"}) {
            QTest::newRow(what) << QByteArray(what);
        }
    }

    void onlyTheSameRequestIsMadeConditional() {
        QFETCH(const QByteArray, what);
        RawServer server;
        server.answer({}, rawReply(200, "12345", "ETag: \"a\"\r\n"));
        CurlHttpClient client;
        HttpRequest request = poll(server.url(u"/a"_s));
        QVERIFY(fetch(client, request).has_value());
        if (what == "token") {
            request = poll(server.url(u"/a"_s), "another");
        } else if (what == "header") {
            request.headers.push_back({"X-More", "1"});
        } else if (what == "address") {
            request = poll(server.url(u"/b"_s));
        } else if (what == "query") {
            request = poll(server.url(u"/a?"_s));
        } else if (what == "POST") {
            request.method = what;
        } else if (what == "HEAD") {
            request.method = what;
            server.answer({}, "HTTP/1.1 404 Gone\r\n\r\n");
        } else if (what == "body") {
            request.body = "{}";
        } else if (what == "unasked") {
            request.mayRevalidate = false;
        } else if (what == "own tag") {
            request.headers.push_back({"if-none-match", "\"mine\""});
        } else if (what == "own date") {
            request.headers.push_back({"If-Modified-Since", "mine"});
        } else if (what == "range") {
            request.headers.push_back({"Range", "bytes=0-"});
        } else if (what == "less room") {
            request.bodyLimit = 4;
        }
        QVERIFY(fetch(client, request).has_value());
        const QByteArray expected = what == "same"       ? "\"a\""
                                    : what == "own tag"  ? "\"mine\""
                                    : what == "own date" ? "mine"
                                                         : "";
        QCOMPARE(condition(server, 1), expected);
    }

    void a304ToTheCallersOwnConditionStaysA304() {
        RawServer server;
        server.answer({}, kSame);
        CurlHttpClient client;
        HttpRequest request = poll(server.url(u"/a"_s));
        request.headers.push_back({"If-None-Match", "\"mine\""});
        QVERIFY(isReply(fetch(client, request), 304, {}));
        QVERIFY(isReply(fetch(client, request), 304, {}));
    }

    void theRestOfA304IsIgnored_data() {
        QTest::addColumn<QByteArray>("same");
        const QByteArray head = "HTTP/1.1 304 Not Modified\r\n";
        QTest::newRow("body") << head + "\r\nlies";
        QTest::newRow("body with a length") << head + "Content-Length: 4\r\n\r\nlies";
        QTest::newRow("length without a body") << head + "Content-Length: 4\r\n\r\n";
        QTest::newRow("length beyond 64 bits")
            << head + "Content-Length: 99999999999999999999\r\n\r\n";
        QTest::newRow("chunks") << head +
                                       "Transfer-Encoding: chunked\r\n\r\n4\r\nlies\r\n0\r\n\r\n";
        QTest::newRow("another reply") << kSame + rawReply(200, "lies", "ETag: \"lie\"\r\n");
        QTest::newRow("location") << head + "Location: /elsewhere\r\n\r\n";
    }

    void theRestOfA304IsIgnored() {
        QFETCH(const QByteArray, same);
        RawServer server;
        server.answer({}, tagged("\"a\"", "truth", same));
        CurlHttpClient client;
        for (int i = 0; i < 4; ++i) {
            QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "truth"));
        }
        QCOMPARE(condition(server, 3), "\"a\"");
    }

    void aMalformed304IsBroken() {
        RawServer server;
        server.answer({}, tagged("\"a\"", "x",
                                 "HTTP/1.1 304 Same\r\nContent-Length: 1\r\n"
                                 "Content-Length: 2\r\n\r\n"));
        CurlHttpClient client;
        QVERIFY(isReply(fetch(client, poll(server.url(u"/a"_s))), 200, "x"));
        QVERIFY(fetch(client, poll(server.url(u"/a"_s))) == HttpResult(HttpError::Broken));
    }
};

BRIMLET_TEST(TestHttpConditional, QCoreApplication)
#include "tst_httpconditional.moc"
