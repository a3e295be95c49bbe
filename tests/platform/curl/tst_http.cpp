#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QAbstractEventDispatcher>
#include <QSignalSpy>
#include <QTest>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

void wait(std::chrono::milliseconds time) {
    QTimer timer;
    timer.setSingleShot(true);
    QSignalSpy passed(&timer, &QTimer::timeout);
    timer.start(time);
    QVERIFY(passed.wait(static_cast<int>(time.count()) * 10 + 1000));
}

class CurlPeer final : public HttpPeer {
public:
    HttpClient& client() override { return *m_client; }
    void dropClient() override { m_client.reset(); }
    Url url(const QString& path) const override { return m_server.url(path); }
    void answer(const QString& path, int status, const QByteArray& body) override {
        m_server.answer(path.toLatin1(), rawReply(status, body));
    }
    void answerTagged(const QString& path, const QByteArray& body) override {
        const QByteArray tag = '"' + body.toHex() + '"';
        m_server.answer(path.toLatin1(), [=](RawConnection& connection, const RawRequest& request) {
            const bool isSame = request.header("If-None-Match") == tag;
            connection.send(isSame ? QByteArray("HTTP/1.1 304 Not Modified\r\n\r\n")
                                   : rawReply(200, body, "ETag: " + tag + "\r\n"));
        });
    }
    void hang(const QString& path) override { m_server.answer(path.toLatin1(), RawAnswer()); }
    QStringList log() const override {
        QStringList lines;
        for (const RawRequest& request : m_server.requests()) {
            lines << QString::fromLatin1(request.method() + ' ' + request.target());
        }
        return lines;
    }
    void pass(std::chrono::milliseconds time) override { wait(time); }

private:
    RawServer m_server;
    std::optional<CurlHttpClient> m_client{std::in_place};
};

} // namespace

class TestHttp final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void itKeepsTheContract_data() { addHttpContractRows(); }
    void itKeepsTheContract() {
        CurlPeer peer;
        runHttpContractRow(peer);
    }

    void oneConnectionServesOneRequestAfterAnother() {
        RawServer server;
        server.answer({}, rawReply(200, "x"));
        server.answer("/rejected", rawReply(401, "some words", "WWW-Authenticate: Basic\r\n"));
        CurlHttpClient client;
        for (int i = 0; i < 20; ++i) {
            const QString path = i % 2 == 0 ? u"/"_s : u"/rejected"_s;
            QVERIFY(fetch(client, requestTo(server.url(path))).has_value());
        }
        QCOMPARE(server.requests().size(), 20U);
        QCOMPARE(server.connections(), 1);
    }

    void aKeptConnectionThatWasClosedIsReplaced() {
        RawServer server;
        server.answer({}, rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))).has_value());
        server.connection(0).cut();
        QTRY_VERIFY(!server.connection(0).isOpen());
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))) == HttpResult(HttpReply{200, "x"}));
        QCOMPARE(server.connections(), 2);
    }

    void afterManyRequestsFewConnectionsAreKept() {
        RawServer server;
        CurlHttpClient client;
        std::vector<Awaited> replies;
        replies.reserve(30);
        for (int i = 0; i < 30; ++i) {
            replies.emplace_back(client.send(requestTo(server.url(u"/"_s))));
        }
        QTRY_COMPARE(server.requests().size(), 30U);
        QCOMPARE(server.connections(), 30);
        for (int i = 0; i < 30; ++i) {
            server.connection(i).send(rawReply(200, QByteArray::number(i)));
        }
        for (const Awaited& reply : replies) {
            QTRY_VERIFY(reply.isDone());
            QVERIFY(std::holds_alternative<HttpReply>(reply.result()));
        }
        QTRY_VERIFY(server.openConnections() <= 4);
        QVERIFY(server.openConnections() >= 1);
    }

    void cookiesAreNeverSentBack() {
        RawServer server;
        server.answer({}, rawReply(200, "x", "Set-Cookie: id=1; Path=/\r\n"));
        CurlHttpClient client;
        for (int i = 0; i < 3; ++i) {
            QVERIFY(fetch(client, requestTo(server.url(u"/"_s))).has_value());
        }
        QCOMPARE(server.requests().size(), 3U);
        QVERIFY(!server.received().toLower().contains("cookie"));
    }

    void otherProgramsInheritNoConnection() {
        RawServer server;
        server.answer({}, rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/"_s))).has_value());
        int found = 0;
        for (int descriptor = 0; descriptor < 1024; ++descriptor) {
            sockaddr_in peer{};
            socklen_t size = sizeof peer;
            if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
                peer.sin_family == AF_INET && ntohs(peer.sin_port) == server.port()) {
                ++found;
                QVERIFY((::fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0);
            }
        }
        QCOMPARE(found, 1);
    }

    void nothingWakesUpWhileIdleOrWaiting() {
        RawServer server;
        server.answer("/good", rawReply(200, "x"));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(server.url(u"/good"_s))).has_value());
        const Awaited waiting(client.send(requestTo(server.url(u"/never"_s))));
        QTRY_COMPARE(server.requests().size(), 2U);

        QSignalSpy wakes(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake);
        wait(1000ms);
        // Two timers of wait() itself, and a few turns of the event loop before it is idle.
        QVERIFY2(wakes.count() <= 6, QByteArray::number(wakes.count()).constData());
    }
};

BRIMLET_TEST(TestHttp, QCoreApplication)
#include "tst_http.moc"
