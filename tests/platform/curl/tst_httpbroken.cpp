#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TestHttpBroken final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void aMalformedOrIncompleteReplyIsBroken_data() {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray inChunks = ok + "Transfer-Encoding: chunked\r\n\r\n";
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("HTTP/0.9") << QByteArray("<html>hello</html>");
        QTest::newRow("JSON alone") << QByteArray("{\"a\":1}\r\n\r\n");
        QTest::newRow("noise") << QByteArray("\x16\x03\x01\x00\x00\r\n\r\n", 9);
        QTest::newRow("half a status line") << QByteArray("HTTP/1.");
        QTest::newRow("status without number") << QByteArray("HTTP/1.1 abc OK\r\n\r\n{}");
        QTest::newRow("status zero") << QByteArray("HTTP/1.1 000 OK\r\n\r\n{}");
        QTest::newRow("cut in the head") << ok + "Content-Le";
        QTest::newRow("cut before the empty line") << ok + "Content-Length: 2\r\n";
        QTest::newRow("interim reply alone") << QByteArray("HTTP/1.1 103 Early Hints\r\n\r\n");
        QTest::newRow("cut in the body") << ok + "Content-Length: 5\r\n\r\n{}";
        QTest::newRow("no body") << ok + "Content-Length: 5\r\n\r\n";
        QTest::newRow("more body than promised") << ok + "Content-Length: 2\r\n\r\n{}{}";
        QTest::newRow("negative length") << ok + "Content-Length: -2\r\n\r\n{}";
        QTest::newRow("signed length") << ok + "Content-Length: +2\r\n\r\n{}";
        QTest::newRow("length in words") << ok + "Content-Length: two\r\n\r\n{}";
        QTest::newRow("empty length") << ok + "Content-Length:\r\n\r\n{}";
        QTest::newRow("two lengths in one") << ok + "Content-Length: 2, 2\r\n\r\n{}";
        QTest::newRow("two lengths") << ok + "Content-Length: 2\r\nContent-Length: 9\r\n\r\n{}";
        QTest::newRow("the same length twice")
            << ok + "Content-Length: 2\r\ncontent-length: 2\r\n\r\n{}";
        QTest::newRow("bad chunk size") << inChunks + "zz\r\n{}\r\n0\r\n\r\n";
        QTest::newRow("negative chunk size") << inChunks + "-2\r\n{}\r\n0\r\n\r\n";
        QTest::newRow("giant chunk size") << inChunks + "fffffffffffffffff\r\n{}\r\n0\r\n\r\n";
        QTest::newRow("cut between chunks") << inChunks + "2\r\n{}\r\n";
        QTest::newRow("cut in a chunk") << inChunks + "9\r\n{}";
        QTest::newRow("chunk longer than its size") << inChunks + "2\r\n{}{}\r\n0\r\n\r\n";
        QTest::newRow("two lengths, one of them in chunks")
            << ok + "Content-Length: 2\r\nContent-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n" +
                   "2\r\n{}\r\n0\r\n\r\n";
        QTest::newRow("compressed transfer encoding")
            << ok + "Transfer-Encoding: gzip\r\n\r\n\x1F\x8B\x08";
        QTest::newRow("compressed in chunks")
            << ok + "Transfer-Encoding: deflate, chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n";
        QTest::newRow("compressed, in an interim reply")
            << "HTTP/1.1 103 Hints\r\nTransfer-Encoding: gzip\r\n\r\n" + rawReply(200, "{}");
        QTest::newRow("chunked twice")
            << ok + "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n" +
                   "2\r\n{}\r\n0\r\n\r\n";
        QTest::newRow("NUL in the head")
            << ok + QByteArray("X: \0\r\nContent-Length: 2\r\n\r\n{}", 29);
    }

    void aMalformedOrIncompleteReplyIsBroken() {
        QFETCH(const QByteArray, bytes);
        RawServer server;
        server.answerAndCut({}, bytes);
        CurlHttpClient client;
        const auto result = fetch(client, requestTo(server.url(u"/"_s)));
        QVERIFY(result == HttpResult(HttpError::Broken));
    }

    void aMalformedReplyIsBrokenWhileTheConnectionIsOpen_data() {
        QTest::addColumn<QByteArray>("head");
        QTest::newRow("negative length") << QByteArray("Content-Length: -2\r\n\r\n");
        QTest::newRow("two lengths")
            << QByteArray("Content-Length: 9\r\nContent-Length: 2\r\n\r\n{}");
        QTest::newRow("bad chunk") << QByteArray("Transfer-Encoding: chunked\r\n\r\nzz\r\n{}\r\n");
    }

    void aMalformedReplyIsBrokenWhileTheConnectionIsOpen() {
        QFETCH(const QByteArray, head);
        RawServer server;
        server.answer({}, "HTTP/1.1 200 OK\r\n" + head);
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpError::Broken));
    }

    void aResetIsBroken_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::newRow("at once") << QByteArray();
        QTest::newRow("in the head") << QByteArray("HTTP/1.1 200 OK\r\n");
        QTest::newRow("in the body")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n{}");
        QTest::newRow("in a body until closed") << QByteArray("HTTP/1.1 200 OK\r\n\r\n{}");
    }

    void aResetIsBroken() {
        QFETCH(const QByteArray, before);
        RawServer server;
        RawConnection* open = nullptr;
        server.answer({}, [&](RawConnection& connection, const RawRequest&) {
            connection.send(before);
            open = &connection;
        });
        CurlHttpClient client;
        HttpRequest request = requestTo(server.url(u"/"_s));
        const Awaited reply(client.send(std::move(request)));
        QTRY_VERIFY(open != nullptr);
        open->reset();
        QTRY_VERIFY(reply.isDone());
        QVERIFY(reply.result() == HttpResult(HttpError::Broken));
    }

    void aConnectionClosedOnAcceptIsAFailure_data() {
        QTest::addColumn<bool>("isReset");
        QTest::newRow("closed") << false;
        QTest::newRow("reset") << true;
    }

    void aConnectionClosedOnAcceptIsAFailure() {
        QFETCH(const bool, isReset);
        RawServer server;
        server.onConnect([isReset](RawConnection& connection) {
            if (isReset) {
                connection.reset();
            } else {
                connection.cut();
            }
        });
        CurlHttpClient client;
        const auto result = fetch(client, requestTo(server.url(u"/"_s)));
        // Depending on timing libcurl sees a connection that failed or one that ended.
        QVERIFY(result == HttpResult(HttpError::Broken) ||
                result == HttpResult(HttpError::Unreachable));
    }

    void aPortWithoutAListenerIsUnreachable() {
        std::optional<RawServer> server(std::in_place);
        const Url url = server->url(u"/"_s);
        server.reset();
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(url)) == HttpResult(HttpError::Unreachable));
    }

    void anAddressWithoutARouteIsUnreachable() {
        CurlHttpClient client;
        const auto url = Url::fromString(u"http://255.255.255.255/"_s);
        QVERIFY(fetch(client, requestTo(url.value())) == HttpResult(HttpError::Unreachable));
    }

    void aProtocolSwitchIsNotFollowed() {
        RawServer server;
        server.answer({}, "HTTP/1.1 101 Switching\r\nUpgrade: h2c\r\n\r\n" + rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpReply{101, {}}));
        QTRY_COMPARE(server.openConnections(), 0);
    }

    void interimRepliesAreNotTheReply_data() {
        QTest::addColumn<QByteArray>("interim");
        QTest::newRow("103") << QByteArray("HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\n");
        QTest::newRow("100") << QByteArray("HTTP/1.1 100 Continue\r\n\r\n");
        QTest::newRow("several") << QByteArray("HTTP/1.1 102 Processing\r\n\r\n").repeated(5);
        QTest::newRow("with the wrong headers")
            << QByteArray("HTTP/1.1 103 Early Hints\r\nContent-Length: 99\r\nLocation: /y\r\n\r\n");
    }

    void interimRepliesAreNotTheReply() {
        QFETCH(const QByteArray, interim);
        RawServer server;
        server.answer({}, interim + rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpReply{200, "x"}));
        server.answer({}, interim + rawReply(302, "x"));
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpReply{302, {}}));
    }

    void aReplyMayArriveByteByByte() {
        RawServer server;
        server.answer({}, [](RawConnection& connection, const RawRequest&) {
            connection.drip("HTTP/1.1 103 Hints\r\n\r\n" + rawReply(200, "{}"), 1ms);
        });
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpReply{200, "{}"}));
    }

    void aCompressedBodyIsNotDecompressed_data() {
        QTest::addColumn<QByteArray>("coding");
        for (const char* coding : {"gzip", "deflate", "br", "zstd", "gzip, gzip", "identity"}) {
            QTest::newRow(coding) << QByteArray(coding);
        }
    }

    void aCompressedBodyIsNotDecompressed() {
        QFETCH(const QByteArray, coding);
        // Four megabytes of zeros in four kilobytes.
        const QByteArray packed = qCompress(QByteArray(4'000'000, '\0'), 9).sliced(4);
        RawServer server;
        server.answer({}, rawReply(200, packed, "Content-Encoding: " + coding + "\r\n"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpReply{200, packed}));
    }

    void anAuthenticationChallengeIsNotAnswered() {
        RawServer server;
        server.answer("/401", rawReply(401, "x", "WWW-Authenticate: Basic realm=\"r\"\r\n"));
        server.answer("/407", rawReply(407, "x", "Proxy-Authenticate: Basic realm=\"r\"\r\n"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/401"_s))) == HttpResult(HttpReply{401, {}}));
        QVERIFY(fetch(client, requestTo(server.url(u"/407"_s))) == HttpResult(HttpReply{407, {}}));
        QCOMPARE(server.requests().size(), 2U);
        QVERIFY(!server.received().contains("uthorization"));
    }
};

BRIMLET_TEST(TestHttpBroken, QCoreApplication)
#include "tst_httpbroken.moc"
