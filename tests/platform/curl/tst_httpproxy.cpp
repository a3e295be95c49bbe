#include "platform/curl/curladdress.h"
#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Sets an environment variable until its destruction.
class Variable final {
public:
    Variable(const char* name, const QByteArray& value)
        : m_name(name) {
        qputenv(name, value);
    }
    ~Variable() { qunsetenv(m_name); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* m_name;
};

} // namespace

class TestHttpProxy final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void aProxyIsTakenFromTheEnvironment() {
        RawServer proxy;
        proxy.answer({}, rawReply(200, "x"));
        const Variable variable("http_proxy", "127.0.0.1:" + QByteArray::number(proxy.port()));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(urlOf("http://service.test/a"))) ==
                HttpResult(HttpReply{200, "x"}));
        const RawRequest& request = proxy.requests().at(0);
        QCOMPARE(request.target(), "http://service.test/a");
        QCOMPARE(request.lines().size(), 3);
        QCOMPARE(request.header("Host"), "service.test");
        QCOMPARE(request.header("User-Agent"), "Brimlet/0.1.0");
    }

    void loopbackIsNeverReachedThroughAProxy_data() {
        QTest::addColumn<QString>("host");
        QTest::newRow("address") << "127.0.0.1";
        QTest::newRow("name") << "localhost";
        QTest::newRow("name in capitals") << "LOCALHOST";
    }

    void loopbackIsNeverReachedThroughAProxy() {
        QFETCH(const QString, host);
        RawServer proxy;
        RawServer server;
        server.answer({}, rawReply(200, "x"));
        const QByteArray address = "http://127.0.0.1:" + QByteArray::number(proxy.port());
        const Variable http("http_proxy", address);
        const Variable all("all_proxy", address);
        CurlHttpClient client;
        const QString text = u"http://%1:%2/"_s.arg(host).arg(server.port());
        QVERIFY(fetch(client, authorised(Url::fromString(text).value())) ==
                HttpResult(HttpReply{200, "x"}));
        QCOMPARE(proxy.connections(), 0);
    }

    void aProxySeesOnlyTheHostOfASecureRequest_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("407") << rawReply(407, "x", "Proxy-Authenticate: Basic\r\n");
        QTest::newRow("garbage") << QByteArray("garbage\r\n\r\n");
        QTest::newRow("accepts, then nonsense") << QByteArray("HTTP/1.1 200 OK\r\n\r\nnonsense");
    }

    void aProxySeesOnlyTheHostOfASecureRequest() {
        QFETCH(const QByteArray, reply);
        RawServer proxy;
        proxy.answerAndCut({}, reply);
        const Variable variable("https_proxy", "127.0.0.1:" + QByteArray::number(proxy.port()));
        CurlHttpClient client;
        const auto result = fetch(client, authorised(urlOf("https://service.test/a")));
        QVERIFY(result && std::holds_alternative<HttpError>(*result));
        QCOMPARE(proxy.requests().size(), 1U);
        QVERIFY(proxy.received().startsWith("CONNECT service.test:443 HTTP/1.1\r\n"));
        QVERIFY(!proxy.received().contains("t0ken"));
        QVERIFY(!proxy.received().contains("/a"));
    }

    void aProxysErrorOnAPlainRequestIsAFailure_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("error");
        QTest::newRow("407") << rawReply(407, "x", "Proxy-Authenticate: Basic\r\n")
                             << int(HttpError::Unreachable);
        QTest::newRow("garbage") << QByteArray("garbage\r\n\r\n") << int(HttpError::Broken);
        QTest::newRow("nothing") << QByteArray() << int(HttpError::Broken);
        QTest::newRow("cut") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{}")
                             << int(HttpError::Broken);
    }

    void aProxysErrorOnAPlainRequestIsAFailure() {
        QFETCH(const QByteArray, reply);
        QFETCH(const int, error);
        RawServer proxy;
        proxy.answerAndCut({}, reply);
        const Variable variable("http_proxy", "127.0.0.1:" + QByteArray::number(proxy.port()));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(urlOf("http://service.test/a"))) ==
                HttpResult(HttpError(error)));
        QCOMPARE(proxy.requests().size(), 1U);
        QVERIFY(!proxy.received().contains("uthorization"));
    }

    void anUnreachableProxyIsNotBypassed() {
        std::optional<RawServer> proxy(std::in_place);
        const QByteArray address = "127.0.0.1:" + QByteArray::number(proxy->port());
        proxy.reset();
        const Variable http("http_proxy", address);
        const Variable https("https_proxy", address);
        CurlHttpClient client;
        for (const char* text : {"http://service.test/a", "https://service.test/a"}) {
            QVERIFY(fetch(client, authorised(urlOf(text))) == HttpResult(HttpError::Unreachable));
        }
    }

    void theEnvironmentMayExceptHostsFromTheProxy_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("small letters") << QByteArray("no_proxy");
        QTest::newRow("capitals") << QByteArray("NO_PROXY");
    }

    void theEnvironmentMayExceptHostsFromTheProxy() {
        QFETCH(const QByteArray, name);
        RawServer proxy;
        proxy.answer({}, rawReply(200, "the proxy's"));
        RawServer server;
        server.answer({}, rawReply(200, "its own"));
        const Variable http("http_proxy", "127.0.0.1:" + QByteArray::number(proxy.port()));
        // Loopback, but not one of the spellings for which no proxy is used.
        const QByteArray host = "127.0.0.2";
        const QByteArray text = "http://" + host + ':' + QByteArray::number(server.port()) + '/';
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(urlOf(text))) == HttpResult(HttpReply{200, "the proxy's"}));
        const Variable excepted(name.constData(), host);
        const auto result = fetch(client, requestTo(urlOf(text)));
        // Without the proxy the request fails, because the server does not listen there.
        QVERIFY(result == HttpResult(HttpError::Unreachable));
        QCOMPARE(proxy.requests().size(), 1U);
    }

    void loopbackHasThreeSpellings() {
        for (const char* text : {"http://127.0.0.1/", "http://[::1]:8791/", "https://LocalHost/"}) {
            QVERIFY2(isLoopback(urlOf(text)), text);
        }
        for (const char* text : {"http://127.0.0.1.evil.test/", "http://localhost.evil.test/",
                                 "http://[::2]/", "http://service.test/", "/127.0.0.1"}) {
            QVERIFY2(!isLoopback(urlOf(text)), text);
        }
    }
};

BRIMLET_TEST(TestHttpProxy, QCoreApplication)
#include "tst_httpproxy.moc"
