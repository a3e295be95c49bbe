#include "platform/curl/authorities.h"
#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

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

/// A new self-signed certificate with its key.
class Certificate final {
public:
    enum class Age { Valid, Expired };

    explicit Certificate(const QString& name, Age age = Age::Valid) {
        m_isMade = runOpenssl({u"req"_qs, u"-x509"_qs, u"-newkey"_qs, u"ec"_qs, u"-pkeyopt"_qs,
                               u"ec_paramgen_curve:P-256"_qs, u"-nodes"_qs, u"-subj"_qs,
                               u"/CN=test"_qs, u"-addext"_qs, u"subjectAltName="_qs + name,
                               u"-days"_qs, u"2"_qs, u"-keyout"_qs, keyPath(), u"-out"_qs, path()});
        if (age == Age::Expired) {
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

} // namespace

class TestHttpTls final : public QObject {
    Q_OBJECT

    /// A server with this certificate receives no byte of a request.
    static void checkRefusal(const Certificate& certificate, const QByteArray& moreAuthorities) {
        QVERIFY(certificate.isMade());
        RawServer server(certificate.configuration());
        CurlHttpClient client(moreAuthorities);
        QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) ==
                HttpResult(HttpError::Unreachable));
        QVERIFY(server.received().isEmpty());
    }

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

    void aSelfSignedCertificateIsRefused() {
        const Certificate certificate(kOurAddress);
        checkRefusal(certificate, {});
    }

    void anAuthorityIsFoundInAFolderByItsHash() {
        const Certificate certificate(kOurAddress);
        const QTemporaryDir folder;
        QVERIFY(QFile::copy(certificate.path(), folder.filePath(u"authority.pem"_qs)));
        RawServer server(certificate.configuration());
        server.answer({}, rawReply(200, "x"));
        {
            CurlHttpClient client(QFile::encodeName(folder.path()));
            QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) ==
                    HttpResult(HttpError::Unreachable));
            QVERIFY(!isNamedByHash(folder.path()));
        }
        QVERIFY(runOpenssl({u"rehash"_qs, folder.path()}));
        QVERIFY(isNamedByHash(folder.path()));
        CurlHttpClient client(QFile::encodeName(folder.path()));
        QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) == HttpResult(HttpReply{200, "x"}));
    }

    void aSystemFolderOfAuthoritiesNamedByHashIsUsed() {
        if (!isNamedByHash(u"/etc/ssl/certs"_qs)) {
            QSKIP("this system keeps its authorities elsewhere");
        }
        QCOMPARE(authoritiesFolder(), "/etc/ssl/certs");
    }

    void aTrustedCertificateWithAnotherNameIsRefused() {
        const Certificate certificate(u"DNS:other.test"_qs);
        checkRefusal(certificate, QFile::encodeName(certificate.path()));
    }

    void anExpiredTrustedCertificateIsRefused() {
        const Certificate certificate(kOurAddress, Certificate::Age::Expired);
        checkRefusal(certificate, QFile::encodeName(certificate.path()));
    }

    void tlsBefore12IsRefused_data() {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("isAccepted");
        QTest::newRow("1.1") << "-tls1_1" << false;
        QTest::newRow("1.2") << "-tls1_2" << true;
    }

    void tlsBefore12IsRefused() {
        QFETCH(const QString, version);
        QFETCH(const bool, isAccepted);
        const Certificate certificate(kOurAddress);
        QVERIFY(certificate.isMade());
        QProcess server;
        // With -www it answers requests; without it, it prints them.
        server.start(u"openssl"_qs,
                     QStringList{u"s_server"_qs, u"-accept"_qs, u"127.0.0.1:0"_qs, version,
                                 u"-cipher"_qs, u"DEFAULT@SECLEVEL=0"_qs, u"-cert"_qs,
                                 certificate.path(), u"-key"_qs, certificate.keyPath()} +
                         (isAccepted ? QStringList{u"-www"_qs} : QStringList()));
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
            QVERIFY(!(said + server.readAllStandardOutput()).contains("HTTP/1.1"));
        }
    }

    void bytesAfterAReplyAreNeverTheNextReplyOverTls() {
        const Certificate certificate(kOurAddress);
        QVERIFY(certificate.isMade());
        RawServer server(certificate.configuration());
        server.answer({}, rawReply(200, "x"));
        CurlHttpClient client(QFile::encodeName(certificate.path()));
        QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) == HttpResult(HttpReply{200, "x"}));
        server.connection(0).send(rawReply(200, "intruder"));
        RawServer other; // once this has answered, the intruder has arrived
        other.answer({}, rawReply(200, "y"));
        QVERIFY(fetch(client, requestTo(other.url(u"/"_qs))) == HttpResult(HttpReply{200, "y"}));
        for (int i = 0; i < 3; ++i) {
            QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) ==
                    HttpResult(HttpReply{200, "x"}));
        }
        QCOMPARE(server.connections(), 2);
    }

    void bytesInTheSameTlsRecordAreNeverTheNextReply_data() {
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<HttpReply>("reply");
        QTest::newRow("a body in a separate record")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n") << QByteArray("first")
            << HttpReply{200, "first"};
        QTest::newRow("an unwanted body")
            << QByteArray("HTTP/1.1 404 No\r\nContent-Length: 5\r\n\r\n") << QByteArray("first")
            << HttpReply{404, {}};
    }
    void bytesInTheSameTlsRecordAreNeverTheNextReply() {
        QFETCH(QByteArray, head);
        QFETCH(QByteArray, body);
        QFETCH(HttpReply, reply);
        const Certificate certificate(kOurAddress);
        RawServer server(certificate.configuration());
        server.answer("/trap", [&](RawConnection& connection, const RawRequest&) {
            connection.send(head);
            connection.sendAfter(50ms, body + rawReply(200, "intruder"));
        });
        server.answer({}, rawReply(200, "x"));
        CurlHttpClient client(QFile::encodeName(certificate.path()));
        for (int i = 0; i < 3; ++i) {
            const auto trapped = fetch(client, authorised(server.url(u"/trap"_qs)));
            QVERIFY(trapped == HttpResult(reply) || trapped == HttpResult(HttpError::Broken));
            QVERIFY(fetch(client, authorised(server.url(u"/"_qs))) ==
                    HttpResult(HttpReply{200, "x"}));
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
};

BRIMLET_TEST(TestHttpTls, QCoreApplication)
#include "tst_httptls.moc"
