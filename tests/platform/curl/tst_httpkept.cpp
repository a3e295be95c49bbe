#include "platform/curl/curlhttpclient.h"
#include "platform/curl/curlsockets.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QByteArray kIntruder = "HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\nintruder";

} // namespace

/// Connections that are kept from one request to the next.
class TestHttpKept final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void aSocketsEndIsKnownByItsAddressInBytes_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("IPv4") << QByteArray("127.0.0.1") << QByteArray::fromHex("7f000001");
        QTest::newRow("IPv6") << QByteArray("fe80::1:2")
                              << QByteArray::fromHex("fe800000000000000000000000010002");
        QTest::newRow("a name") << QByteArray("localhost") << QByteArray();
        QTest::newRow("empty") << QByteArray("") << QByteArray();
    }
    void aSocketsEndIsKnownByItsAddressInBytes() {
        QFETCH(const QByteArray, text);
        const SocketEnd end = SocketEnd::of(text.constData(), 80);
        QTEST(end.address, "bytes");
        QCOMPARE(end.port, 80);
    }

    void bytesAfterAReplyAreNeverTheNextReply_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("status");
        const QByteArray inChunks = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
        QTest::newRow("after a body") << rawReply(200, "first") << 200;
        QTest::newRow("after chunks") << inChunks + "5\r\nfirst\r\n0\r\n\r\n" << 200;
        QTest::newRow("after no body") << rawReply(200, "") << 200;
        QTest::newRow("after an unwanted body") << rawReply(404, "words") << 404;
        QTest::newRow("after a 204") << QByteArray("HTTP/1.1 204 None\r\n\r\n") << 204;
        QTest::newRow("after a 304") << QByteArray("HTTP/1.1 304 Same\r\n\r\n") << 304;
        QTest::newRow("after a 304 with a length")
            << QByteArray("HTTP/1.1 304 Same\r\nContent-Length: 5\r\n\r\n") << 304;
    }

    void bytesAfterAReplyAreNeverTheNextReply() {
        QFETCH(const QByteArray, reply);
        QFETCH(const int, status);
        RawServer server;
        server.answer("/first", reply);
        server.answer("/next", rawReply(200, "next"));
        CurlHttpClient client;
        const auto first = fetch(client, requestTo(server.url(u"/first"_s)));
        QVERIFY(first && std::holds_alternative<HttpReply>(*first));
        QCOMPARE(std::get<HttpReply>(*first).status, status);
        server.connection(0).send(kIntruder);
        for (int i = 0; i < 3; ++i) {
            QVERIFY(fetch(client, requestTo(server.url(u"/next"_s))) ==
                    HttpResult(HttpReply{200, "next"}));
        }
        QCOMPARE(server.connections(), 2);
    }

    void bytesInTheSameReadAreNotTheNextReplyEither_data() {
        bytesAfterAReplyAreNeverTheNextReply_data();
    }

    void bytesInTheSameReadAreNotTheNextReplyEither() {
        QFETCH(const QByteArray, reply);
        RawServer server;
        server.answer("/next", rawReply(200, "next"));
        CurlHttpClient client;
        // The second is longer than libcurl reads at a time, so that a part stays in the socket.
        for (const QByteArray& excess : {kIntruder, kIntruder.repeated(2000)}) {
            server.answer("/first", reply + excess);
            QVERIFY(fetch(client, requestTo(server.url(u"/first"_s))).has_value());
            for (int i = 0; i < 3; ++i) {
                QVERIFY(fetch(client, requestTo(server.url(u"/next"_s))) ==
                        HttpResult(HttpReply{200, "next"}));
            }
        }
    }

    void aGetWhoseReusedConnectionClosesIsRetried() {
        RawServer server;
        server.answer("/first", rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/first"_s))).has_value());
        server.answer("/cut", [&server](RawConnection& connection, const RawRequest&) {
            if (server.connections() == 1) {
                connection.cut();
            } else {
                connection.send(rawReply(200, "y"));
            }
        });
        QVERIFY(fetch(client, requestTo(server.url(u"/cut"_s))) == HttpResult(HttpReply{200, "y"}));
        QCOMPARE(server.requests().size(), 3U);
    }

    void aGetIsRetriedOnlyOnce() {
        RawServer server;
        server.answer("/first", rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/first"_s))).has_value());
        server.answerAndCut("/cut", {});
        QVERIFY(fetch(client, requestTo(server.url(u"/cut"_s))) == HttpResult(HttpError::Broken));
        QCOMPARE(server.requests().size(), 3U);
    }

    void aPostIsNeverSentTwice_data() {
        QTest::addColumn<bool>("isReset");
        QTest::newRow("closed") << false;
        QTest::newRow("reset") << true;
    }

    void aPostIsNeverSentTwice() {
        QFETCH(const bool, isReset);
        RawServer server;
        server.answer("/first", rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/first"_s))).has_value());
        server.answer("/cut", [isReset](RawConnection& connection, const RawRequest&) {
            isReset ? connection.reset() : connection.cut();
        });
        HttpRequest request = requestTo(server.url(u"/cut"_s), "POST");
        request.body = "{}";
        QVERIFY(fetch(client, request) == HttpResult(HttpError::Broken));
        QCOMPARE(server.requests().size(), 2U);
    }
};

BRIMLET_TEST(TestHttpKept, QCoreApplication)
#include "tst_httpkept.moc"
