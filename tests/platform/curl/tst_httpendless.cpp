#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/memoryuse.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;

namespace {

/// Bytes. For a body that grows to its limit of 1 MiB, and for the server in this process.
constexpr qint64 kMostGrowth = qint64{6} * 1024 * 1024;

} // namespace

/// Replies without end, sent as fast as they are read.
class TestHttpEndless final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        // So that allocations of the first request are not measured.
        RawServer server;
        server.answer({}, rawReply(200, QByteArray(100'000, 'x')));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))).has_value());
    }

    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void anEndlessReplyIsTooLarge_data() {
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<QByteArray>("more");
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray inChunks = ok + "Transfer-Encoding: chunked\r\n\r\n";
        QTest::newRow("body") << ok + "\r\n" << QByteArray(100'000, 'x');
        QTest::newRow("chunks") << inChunks << QByteArray("4\r\nxxxx\r\n").repeated(10'000);
        QTest::newRow("chunk extension") << inChunks + "4;" << QByteArray(100'000, 'x');
        QTest::newRow("trailers") << inChunks + "0\r\n" << QByteArray("A: b\r\n").repeated(10'000);
        QTest::newRow("head") << ok << QByteArray("A: b\r\n").repeated(10'000);
        QTest::newRow("header line") << ok + "A: " << QByteArray(100'000, 'x');
        QTest::newRow("status line") << QByteArray("HTTP/1.1 200 ") << QByteArray(100'000, 'x');
        QTest::newRow("100 without end")
            << QByteArray() << QByteArray("HTTP/1.1 100 Continue\r\n\r\n").repeated(5'000);
        QTest::newRow("103 without end")
            << QByteArray()
            << QByteArray("HTTP/1.1 103 Hints\r\nLink: </x>\r\n\r\n").repeated(3'000);
    }

    void anEndlessReplyIsTooLarge() {
        QFETCH(const QByteArray, start);
        QFETCH(const QByteArray, more);
        RawServer server;
        server.answer({}, [&](RawConnection& connection, const RawRequest&) {
            connection.send(start);
            connection.flood(more);
        });
        CurlHttpClient client;
        QVERIFY(forgetPeak());
        const qint64 before = memoryInUse();
        const auto result = fetch(client, requestTo(server.url(u"/"_s)));
        QVERIFY(result == HttpResult(HttpError::TooLarge));
        const qint64 growth = memoryPeak() - before;
        QVERIFY2(isMemoryDistorted() || growth < kMostGrowth,
                 QByteArray::number(growth).constData());
        QTRY_COMPARE(server.openConnections(), 0);
    }

    void anEndlessBodyIsCutAtTheRequestsOwnLimit() {
        RawServer server;
        server.answer({}, [](RawConnection& connection, const RawRequest&) {
            connection.send("HTTP/1.1 200 OK\r\n\r\n");
            connection.flood(QByteArray(100'000, 'x'));
        });
        CurlHttpClient client;
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.bodyLimit = qsizetype{4} * 1024 * 1024;
        QVERIFY(forgetPeak());
        const qint64 before = memoryInUse();
        QVERIFY(fetch(client, request) == HttpResult(HttpError::TooLarge));
        const qint64 growth = memoryPeak() - before;
        QVERIFY2(isMemoryDistorted() || growth < kMostGrowth + 2 * request.bodyLimit,
                 QByteArray::number(growth).constData());
    }

    void aCompressedTransferEncodingIsNotDecompressed_data() {
        QTest::addColumn<QByteArray>("coding");
        QTest::addColumn<QByteArray>("body");
        const QByteArray bomb = qCompress(QByteArray(64'000'000, '\0'), 9).sliced(4);
        QTest::newRow("once") << QByteArray("deflate") << bomb;
        QTest::newRow("twice") << QByteArray("deflate, deflate") << qCompress(bomb, 9).sliced(4);
        QTest::newRow("in chunks") << QByteArray("deflate, chunked")
                                   << QByteArray::number(bomb.size(), 16) + "\r\n" + bomb;
    }

    void aCompressedTransferEncodingIsNotDecompressed() {
        QFETCH(const QByteArray, coding);
        QFETCH(const QByteArray, body);
        RawServer server;
        server.answerAndCut({},
                            "HTTP/1.1 200 OK\r\nTransfer-Encoding: " + coding + "\r\n\r\n" + body);
        CurlHttpClient client;
        QVERIFY(forgetPeak());
        const qint64 before = memoryInUse();
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpError::Broken));
        const qint64 growth = memoryPeak() - before;
        QVERIFY2(isMemoryDistorted() || growth < kMostGrowth,
                 QByteArray::number(growth).constData());
    }
};

BRIMLET_TEST(TestHttpEndless, QCoreApplication)
#include "tst_httpendless.moc"
