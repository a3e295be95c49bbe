#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

bool runOpenssl(const QStringList& arguments) {
    QProcess openssl;
    openssl.start(u"openssl"_qs, arguments);
    return openssl.waitForFinished() && openssl.exitStatus() == QProcess::NormalExit &&
           openssl.exitCode() == 0;
}

/// A certificate that signs itself, made afresh, with its key.
class Certificate final {
public:
    enum class Age { Good, RunOut };

    explicit Certificate(const QString& name, Age age = Age::Good) {
        m_isMade = runOpenssl({u"req"_qs, u"-x509"_qs, u"-newkey"_qs, u"ec"_qs, u"-pkeyopt"_qs,
                               u"ec_paramgen_curve:P-256"_qs, u"-nodes"_qs, u"-subj"_qs,
                               u"/CN=test"_qs, u"-addext"_qs, u"subjectAltName="_qs + name,
                               u"-days"_qs, u"2"_qs, u"-keyout"_qs, keyPath(), u"-out"_qs, path()});
        if (age == Age::RunOut) {
            m_isMade =
                m_isMade && runOpenssl({u"x509"_qs, u"-in"_qs, path(), u"-signkey"_qs, keyPath(),
                                        u"-days"_qs, u"-1"_qs, u"-out"_qs, path()});
        }
    }

    [[nodiscard]] bool isMade() const { return m_isMade; }
    [[nodiscard]] QString path() const { return m_folder.filePath(u"cert.pem"_qs); }
    [[nodiscard]] QString keyPath() const { return m_folder.filePath(u"key.pem"_qs); }
    [[nodiscard]] QSslConfiguration configuration() const {
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setLocalCertificate(QSslCertificate::fromPath(path()).value(0));
        QFile key(keyPath());
        if (key.open(QIODevice::ReadOnly)) {
            tls.setPrivateKey(QSslKey(&key, QSsl::Ec));
        }
        return tls;
    }

private:
    QTemporaryDir m_folder;
    bool m_isMade = false;
};

const QString kOurAddress = u"IP:127.0.0.1"_qs;

/// Sets an environment variable for as long as it lives.
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

HttpRequest authorised(const Url& url) {
    HttpRequest request = requestTo(url);
    request.headers = {{"Authorization", "Bearer t0ken"}};
    request.timeout = 5s;
    return request;
}

Url urlOf(const char* text) {
    return Url::fromString(QString::fromLatin1(text)).value();
}

} // namespace

class TestHttpTls final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_qs)); }

    void aTrustedCertificateWithTheRightNameIsAccepted() {
        const Certificate certificate(kOurAddress);
        QVERIFY(certificate.isMade());
        RawServer server(certificate.configuration());
        server.answer({}, rawReply(200, "x"));
        CurlHttpClient client(QFile::encodeName(certificate.path()));
        for (int i = 0; i < 3; ++i) {
            QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) ==
                    HttpResult(HttpReply{200, "x"}));
        }
        QCOMPARE(server.requests().at(0).header("Authorization"), "Bearer t0ken");
        QCOMPARE(server.connections(), 1);
    }

    void aCertificateOfOurOwnMakingIsRefused() {
        const Certificate certificate(kOurAddress);
        QVERIFY(certificate.isMade());
        RawServer server(certificate.configuration());
        CurlHttpClient client;
        QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) ==
                HttpResult(HttpError::Unreachable));
        QVERIFY(server.received().isEmpty());
    }

    void aTrustedCertificateWithAnotherNameIsRefused() {
        const Certificate certificate(u"DNS:other.test"_qs);
        QVERIFY(certificate.isMade());
        RawServer server(certificate.configuration());
        CurlHttpClient client(QFile::encodeName(certificate.path()));
        QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) ==
                HttpResult(HttpError::Unreachable));
        QVERIFY(server.received().isEmpty());
    }

    void aTrustedCertificateThatHasRunOutIsRefused() {
        const Certificate certificate(kOurAddress, Certificate::Age::RunOut);
        QVERIFY(certificate.isMade());
        RawServer server(certificate.configuration());
        CurlHttpClient client(QFile::encodeName(certificate.path()));
        QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) ==
                HttpResult(HttpError::Unreachable));
        QVERIFY(server.received().isEmpty());
    }

    void theOldProtocolIsRefused_data() {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("isAccepted");
        QTest::newRow("1.1") << "-tls1_1" << false;
        QTest::newRow("1.2") << "-tls1_2" << true;
    }

    void theOldProtocolIsRefused() {
        QFETCH(const QString, version);
        QFETCH(const bool, isAccepted);
        const Certificate certificate(kOurAddress);
        QVERIFY(certificate.isMade());
        QProcess server;
        server.start(u"openssl"_qs, {u"s_server"_qs, u"-accept"_qs, u"127.0.0.1:0"_qs, u"-www"_qs,
                                     version, u"-cipher"_qs, u"DEFAULT@SECLEVEL=0"_qs, u"-cert"_qs,
                                     certificate.path(), u"-key"_qs, certificate.keyPath()});
        QByteArray said;
        QTRY_VERIFY((said += server.readAllStandardOutput()).contains("ACCEPT 127.0.0.1:"));
        const QByteArray port = said.mid(said.indexOf("ACCEPT ") + 17).split('\n').first();
        CurlHttpClient client(QFile::encodeName(certificate.path()));
        const auto result = fetch(client, authorised(urlOf("https://127.0.0.1:" + port + "/")));
        server.kill();
        QVERIFY(server.waitForFinished());
        QVERIFY(result);
        QCOMPARE(std::holds_alternative<HttpReply>(*result), isAccepted);
        if (!isAccepted) {
            QVERIFY(*result == HttpResult(HttpError::Unreachable));
        }
    }

    void plainHttpOnATlsPortIsRefused() {
        RawServer server;
        server.onConnect([](RawConnection& connection) { connection.send(rawReply(200, "x")); });
        CurlHttpClient client;
        const QByteArray text = "https://127.0.0.1:" + QByteArray::number(server.port()) + "/";
        QVERIFY(fetch(client, authorised(urlOf(text))) == HttpResult(HttpError::Unreachable));
        QVERIFY(!server.received().contains("t0ken"));
        QVERIFY(!server.received().contains("GET"));
    }

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

    void thisMachineIsNeverReachedThroughAProxy_data() {
        QTest::addColumn<QString>("host");
        QTest::newRow("address") << "127.0.0.1";
        QTest::newRow("name") << "localhost";
        QTest::newRow("name in capitals") << "LOCALHOST";
    }

    void thisMachineIsNeverReachedThroughAProxy() {
        QFETCH(const QString, host);
        RawServer proxy;
        RawServer server;
        server.answer({}, rawReply(200, "x"));
        const QByteArray address = "http://127.0.0.1:" + QByteArray::number(proxy.port());
        const Variable http("http_proxy", address);
        const Variable all("all_proxy", address);
        CurlHttpClient client;
        const QString text = u"http://%1:%2/"_qs.arg(host).arg(server.port());
        QVERIFY(fetch(client, authorised(Url::fromString(text).value())) ==
                HttpResult(HttpReply{200, "x"}));
        QCOMPARE(proxy.connections(), 0);
    }

    void aProxySeesNothingOfASecureRequest_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("407") << rawReply(407, "x", "Proxy-Authenticate: Basic\r\n");
        QTest::newRow("garbage") << QByteArray("garbage\r\n\r\n");
        QTest::newRow("accepts, then nonsense") << QByteArray("HTTP/1.1 200 OK\r\n\r\nnonsense");
    }

    void aProxySeesNothingOfASecureRequest() {
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

    void aProxysOwnRefusalIsNotTheServices() {
        RawServer proxy;
        proxy.answer({}, rawReply(407, "x", "Proxy-Authenticate: Basic\r\n"));
        const Variable variable("http_proxy", "127.0.0.1:" + QByteArray::number(proxy.port()));
        CurlHttpClient client;
        QVERIFY(fetch(client, requestTo(urlOf("http://service.test/a"))) ==
                HttpResult(HttpError::Unreachable));
        QCOMPARE(proxy.requests().size(), 1U);
    }
};

QTEST_GUILESS_MAIN(TestHttpTls)
#include "tst_httptls.moc"
