#include "platform/curl/curlhttpclient.h"
#include "tests/support/emulated.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/sanitized.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <algorithm>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype kHeadLimit = qsizetype{64} * 1024;
constexpr qsizetype kMebibyte = qsizetype{1024} * 1024;

int openDescriptors() {
    return static_cast<int>(QDir(u"/dev/fd"_s).entryList(QDir::System | QDir::AllEntries).size());
}

QByteArray chunked(const QByteArray& body, qsizetype step) {
    QByteArray bytes = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (qsizetype at = 0; at < body.size(); at += step) {
        const QByteArray part = body.mid(at, step);
        bytes += QByteArray::number(part.size(), 16) + "\r\n" + part + "\r\n";
    }
    return bytes + "0\r\n\r\n";
}

} // namespace

class TestHttpLimits final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void aRequestHasDefaultLimits() {
        const HttpRequest request = requestTo(RawServer().url(u"/"_s));
        QCOMPARE(request.bodyLimit, kMebibyte);
        QCOMPARE(request.timeout, std::chrono::milliseconds(60s));
    }

    void aBodyBeyondItsLimitIsTooLarge_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<qsizetype>("limit");
        QTest::addColumn<qsizetype>("size"); // -1: too large
        const QByteArray head = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n";
        for (const int mebibytes : {1, 4}) {
            const qsizetype limit = mebibytes * kMebibyte;
            for (const int over : {-1, 0, 1}) {
                const QByteArray body(limit + over, 'x');
                const qsizetype expected = over > 0 ? -1 : body.size();
                QTest::addRow("announced, %d MiB %+d", mebibytes, over)
                    << rawReply(200, body) << limit << expected;
                QTest::addRow("until closed, %d MiB %+d", mebibytes, over)
                    << head + body << limit << expected;
                QTest::addRow("in chunks, %d MiB %+d", mebibytes, over)
                    << chunked(body, 5000) << limit << expected;
            }
        }
        QTest::newRow("chunks of one byte")
            << chunked(QByteArray(50'000, 'x'), 1) << kMebibyte << qsizetype{50'000};
    }

    void aBodyBeyondItsLimitIsTooLarge() {
        QFETCH(const QByteArray, reply);
        QFETCH(const qsizetype, limit);
        QFETCH(const qsizetype, size);
        RawServer server;
        server.answerAndCut({}, reply);
        CurlHttpClient client;
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.bodyLimit = limit;
        const auto result = fetch(client, request);
        if (size < 0) {
            QVERIFY(result == HttpResult(HttpError::TooLarge));
        } else {
            QVERIFY(result == HttpResult(HttpReply{200, QByteArray(size, 'x')}));
        }
    }

    void anAnnouncedLengthBeyondTheLimitFailsAtOnce() {
        RawServer server;
        server.answer({}, "HTTP/1.1 200 OK\r\nContent-Length: 1048577\r\n\r\n");
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpError::TooLarge));
    }

    void aHeadBeyondItsLimitIsTooLarge_data() {
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<bool>("isTooLarge");
        for (const qsizetype size : {kHeadLimit - 1, kHeadLimit, kHeadLimit + 1}) {
            QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n";
            const QByteArray line = "X: " + QByteArray(1000, 'y') + "\r\n";
            while (head.size() + line.size() + 100 < size) {
                head += line;
            }
            head += "Z: " + QByteArray(size - head.size() - 7, 'z') + "\r\n\r\n";
            const auto over = static_cast<int>(size - kHeadLimit);
            QTest::addRow("many lines %+d", over) << head << (over > 0);
        }
        QTest::newRow("one long line")
            << "HTTP/1.1 200 OK\r\nX: " + QByteArray(90'000, 'x') + "\r\n\r\n"
            << true;
        QTest::newRow("one very long line")
            << "HTTP/1.1 200 OK\r\nX: " + QByteArray(900'000, 'x') + "\r\n\r\n"
            << true;
    }

    void aHeadBeyondItsLimitIsTooLarge() {
        QFETCH(const QByteArray, head);
        QFETCH(const bool, isTooLarge);
        RawServer server;
        server.answer({}, head + "x");
        CurlHttpClient client;
        const auto result = fetch(client, requestTo(server.url(u"/"_s)));
        QVERIFY(result ==
                (isTooLarge ? HttpResult(HttpError::TooLarge) : HttpResult(HttpReply{200, "x"})));
    }

    void bytesThatKeepComingDoNotExtendTheDeadline_data() {
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<QByteArray>("drops");
        QTest::newRow("body") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n")
                              << QByteArray("x");
        QTest::newRow("header line") << QByteArray("HTTP/1.1 200 OK\r\nX: ") << QByteArray("x");
        QTest::newRow("head") << QByteArray("HTTP/1.1 200 OK\r\n") << QByteArray("A: b\r\n");
        QTest::newRow("interim replies")
            << QByteArray() << QByteArray("HTTP/1.1 100 Continue\r\n\r\n");
        QTest::newRow("chunk extension")
            << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1;")
            << QByteArray("x");
    }

    void bytesThatKeepComingDoNotExtendTheDeadline() {
        QFETCH(const QByteArray, start);
        QFETCH(const QByteArray, drops);
        RawServer server;
        server.answer({}, [&](RawConnection& connection, const RawRequest&) {
            connection.send(start);
            connection.drip(drops, 1ms, true);
        });
        CurlHttpClient client;
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.timeout = 300ms;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(fetch(client, request) == HttpResult(HttpError::TimedOut));
        QVERIFY(timer.elapsed() >= 290);
        QTRY_COMPARE(server.openConnections(), 0);
    }

    void headerLinesThatKeepComingDoNotExtendTheDeadline() {
        RawServer server;
        server.answer({}, [](RawConnection& connection, const RawRequest&) {
            connection.send("HTTP/1.1 200 OK\r\n");
            for (int i = 1; i < 100; ++i) {
                connection.sendAfter(i * 10ms, "A: b\r\n");
            }
        });
        CurlHttpClient client;
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.timeout = 300ms;
        QVERIFY(fetch(client, request) == HttpResult(HttpError::TimedOut));
    }

    void aReplyMustBeCompleteBeforeTheDeadline_data() {
        QTest::addColumn<std::chrono::milliseconds>("lag");
        QTest::addColumn<bool>("isInTime");
        QTest::newRow("before") << 300ms << true;
        QTest::newRow("after") << 900ms << false;
    }

    void aReplyMustBeCompleteBeforeTheDeadline() {
        QFETCH(const std::chrono::milliseconds, lag);
        QFETCH(const bool, isInTime);
        RawServer server;
        server.answer({}, [lag](RawConnection& connection, const RawRequest&) {
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{");
            connection.sendAfter(lag, "}");
        });
        CurlHttpClient client;
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.timeout = 600ms;
        QVERIFY(fetch(client, request) ==
                (isInTime ? HttpResult(HttpReply{200, "{}"}) : HttpResult(HttpError::TimedOut)));
    }

    void afterAnOutageNothingIsLeftAndTheNextRequestSucceeds() {
        RawServer server;
        server.answer("/good", rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/good"_s))).has_value());
        const int before = openDescriptors();
        std::vector<Awaited> replies;
        replies.reserve(20);
        for (int i = 0; i < 20; ++i) { // as many as a minute of polls
            HttpRequest request = requestTo(server.url(u"/never"_s));
            request.timeout = 500ms;
            replies.emplace_back(client.send(std::move(request)));
        }
        for (const Awaited& reply : replies) {
            QTRY_VERIFY(reply.isDone());
            QVERIFY(reply.result() == HttpResult(HttpError::TimedOut));
        }
        QVERIFY(fetch(client, requestTo(server.url(u"/good"_s))) ==
                HttpResult(HttpReply{200, "x"}));
        QTRY_COMPARE(server.openConnections(), 1);
        QTRY_VERIFY(openDescriptors() <= before);
    }

    void onlyWantedStatusesCarryABody_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("last");
        QTest::addColumn<bool>("hasBody");
        for (const int status : {200, 201, 206, 299}) {
            QTest::addRow("%d up to 200", status) << status << 200 << (status == 200);
            QTest::addRow("%d up to 299", status) << status << 299 << true;
        }
        for (const int status : {300, 401, 403, 404, 407, 418, 429, 500, 503, 999}) {
            QTest::addRow("%d up to 299", status) << status << 299 << false;
        }
    }

    void onlyWantedStatusesCarryABody() {
        QFETCH(const int, status);
        QFETCH(const int, last);
        QFETCH(const bool, hasBody);
        RawServer server;
        server.answer({}, rawReply(status, "words"));
        CurlHttpClient client;
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.lastStatusWithBody = last;
        const QByteArray body = hasBody ? "words" : "";
        QVERIFY(fetch(client, request) == HttpResult(HttpReply{status, body}));
        QVERIFY(fetch(client, request) == HttpResult(HttpReply{status, body}));
        QCOMPARE(server.connections(), 1);
    }

    void anUnwantedBodyNeitherDelaysNorChangesTheStatus_data() {
        QTest::addColumn<QByteArray>("rest");
        QTest::addColumn<QByteArray>("flood");
        const QByteArray inChunks = "Transfer-Encoding: chunked\r\n\r\n";
        QTest::newRow("small, unfinished")
            << QByteArray("Content-Length: 9\r\n\r\nx") << QByteArray();
        QTest::newRow("large, unfinished")
            << QByteArray("Content-Length: 99999\r\n\r\nx") << QByteArray();
        QTest::newRow("length beyond 64 bits")
            << QByteArray("Content-Length: 99999999999999999999\r\n\r\n") << QByteArray();
        QTest::newRow("until closed, endless") << QByteArray("\r\n") << QByteArray(9999, 'x');
        QTest::newRow("bad chunk") << inChunks + "zz\r\n" << QByteArray();
        QTest::newRow("endless chunk extension") << inChunks + "1;" << QByteArray(9999, 'x');
        QTest::newRow("endless trailers") << inChunks + "0\r\n"
                                          << QByteArray("A: b\r\n").repeated(999);
    }

    void anUnwantedBodyNeitherDelaysNorChangesTheStatus() {
        QFETCH(const QByteArray, rest);
        QFETCH(const QByteArray, flood);
        RawServer server;
        server.answer({}, [&](RawConnection& connection, const RawRequest&) {
            connection.send("HTTP/1.1 503 Busy\r\n" + rest);
            if (!flood.isEmpty()) {
                connection.flood(flood);
            }
        });
        CurlHttpClient client;
        HttpRequest request = requestTo(server.url(u"/"_s));
        request.timeout = 2s;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(fetch(client, request) == HttpResult(HttpReply{503, {}}));
        QVERIFY(timer.elapsed() < 1000);
        // The rest of the body ends with the request's timeout at the latest.
        QTRY_COMPARE(server.openConnections(), 0);
    }

    void unfinishedBodiesTogetherAreBounded() {
        RawServer server;
        const QByteArray most(4 * kMebibyte - 1, 'x');
        const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 4194304\r\n\r\n";
        server.answer("/stalls", head + most);
        server.answer("/whole", head + most + 'x');
        server.answer("/small", rawReply(200, QByteArray(256 * 1024, 's')));
        CurlHttpClient client;
        const auto requestOf = [&](const QString& path) {
            HttpRequest request = requestTo(server.url(path));
            request.bodyLimit = 4 * kMebibyte;
            request.timeout = kIsSanitized || slowness() > 1 ? 20s : 5s;
            return request;
        };
        std::vector<Awaited> stalled;
        for (int i = 0; i < 12; ++i) {
            stalled.emplace_back(client.send(requestOf(u"/stalls"_s)));
        }
        const auto ended = [&] {
            return std::count_if(stalled.cbegin(), stalled.cend(),
                                 [](const Awaited& one) { return one.isDone(); });
        };
        // At most four of them fit; each of the others fails once it exceeds the limit.
        QTRY_VERIFY_WITH_TIMEOUT(ended() >= 8, 20'000);
        QVERIFY(ended() < 12);
        for (const Awaited& one : stalled) {
            QVERIFY(!one.isDone() || one.result() == HttpResult(HttpError::TooLarge));
        }
        QVERIFY(fetch(client, requestOf(u"/small"_s)) ==
                HttpResult(HttpReply{200, QByteArray(256 * 1024, 's')}));
        // After their timeouts there is room again.
        QTRY_COMPARE_WITH_TIMEOUT(ended(), 12, 30'000);
        QVERIFY(fetch(client, requestOf(u"/whole"_s)) == HttpResult(HttpReply{200, most + 'x'}));
    }
};

BRIMLET_TEST(TestHttpLimits, QCoreApplication)
#include "tst_httplimits.moc"
