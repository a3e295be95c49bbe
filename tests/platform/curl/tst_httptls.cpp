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
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

bool runOpenssl(const QStringList& arguments) {
    QProcess openssl;
    openssl.start(u"openssl"_s, arguments);
    return openssl.waitForFinished() && openssl.exitStatus() == QProcess::NormalExit &&
           openssl.exitCode() == 0;
}

bool write(const QString& path, const QByteArray& text) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

/// A new self-signed certificate with its key.
class Certificate final {
public:
    enum class Age { Valid, Expired };

    explicit Certificate(const QString& name, Age age = Age::Valid) {
        const QStringList key{
            u"-newkey"_s, u"ec"_s,      u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s,
            u"-nodes"_s,  u"-keyout"_s, keyPath()};
        const QStringList subject{u"-subj"_s, u"/CN=test"_s, u"-addext"_s,
                                  u"subjectAltName="_s + name};
        if (age == Age::Valid) {
            m_isMade = runOpenssl(
                QStringList{u"req"_s, u"-x509"_s, u"-days"_s, u"2"_s, u"-out"_s, path()} + key +
                subject);
            return;
        }
        // Only an authority may set both dates in every version.
        const QString request = m_folder.filePath(u"request.pem"_s);
        const QString authority = m_folder.filePath(u"authority.conf"_s);
        m_isMade =
            write(m_folder.filePath(u"index"_s), {}) &&
            write(authority, "[ca]\ndefault_ca=all\n[all]\nrand_serial=yes\npolicy=any\n"
                             "default_md=sha256\ncopy_extensions=copy\ndatabase=" +
                                 QFile::encodeName(m_folder.filePath(u"index"_s)) +
                                 "\nnew_certs_dir=" + QFile::encodeName(m_folder.path()) +
                                 "\n[any]\ncommonName=supplied\n") &&
            runOpenssl(QStringList{u"req"_s, u"-new"_s, u"-out"_s, request} + key + subject) &&
            runOpenssl({u"ca"_s, u"-batch"_s, u"-selfsign"_s, u"-notext"_s, u"-config"_s, authority,
                        u"-keyfile"_s, keyPath(), u"-startdate"_s, u"20200101000000Z"_s,
                        u"-enddate"_s, u"20200102000000Z"_s, u"-in"_s, request, u"-out"_s, path()});
    }

    [[nodiscard]] bool isMade() const { return m_isMade; }
    [[nodiscard]] QString path() const { return m_folder.filePath(u"cert.pem"_s); }
    [[nodiscard]] QString keyPath() const { return m_folder.filePath(u"key.pem"_s); }
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

const QString kOurAddress = u"IP:127.0.0.1"_s;

} // namespace

class TestHttpTls final : public QObject {
    Q_OBJECT

    /// A server with this certificate receives no byte of a request.
    static void checkRefusal(const Certificate& certificate, const QByteArray& moreAuthorities) {
        QVERIFY(certificate.isMade());
        RawServer server(certificate.configuration());
        CurlHttpClient client(moreAuthorities);
        QVERIFY(fetch(client, authorised(server.url(u"/"_s))) ==
                HttpResult(HttpError::Unreachable));
        QVERIFY(server.received().isEmpty());
    }

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void aTrustedCertificateWithTheRightNameIsAccepted() {
        const Certificate certificate(kOurAddress);
        QVERIFY(certificate.isMade());
        RawServer server(certificate.configuration());
        server.answer({}, rawReply(200, "x"));
        CurlHttpClient client(QFile::encodeName(certificate.path()));
        for (int i = 0; i < 3; ++i) {
            QVERIFY(fetch(client, authorised(server.url(u"/"_s))) ==
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
        QVERIFY(QFile::copy(certificate.path(), folder.filePath(u"authority.pem"_s)));
        RawServer server(certificate.configuration());
        server.answer({}, rawReply(200, "x"));
        {
            CurlHttpClient client(QFile::encodeName(folder.path()));
            QVERIFY(fetch(client, authorised(server.url(u"/"_s))) ==
                    HttpResult(HttpError::Unreachable));
            QVERIFY(!isNamedByHash(folder.path()));
        }
        QVERIFY(runOpenssl({u"rehash"_s, folder.path()}));
        QVERIFY(isNamedByHash(folder.path()));
        CurlHttpClient client(QFile::encodeName(folder.path()));
        QVERIFY(fetch(client, authorised(server.url(u"/"_s))) == HttpResult(HttpReply{200, "x"}));
    }

    void aSystemFolderOfAuthoritiesNamedByHashIsUsed() {
        if (!isNamedByHash(u"/etc/ssl/certs"_s)) {
            QSKIP("this system keeps its authorities elsewhere");
        }
        QCOMPARE(authoritiesFolder(), "/etc/ssl/certs");
    }

    void aTrustedCertificateWithAnotherNameIsRefused() {
        const Certificate certificate(u"DNS:other.test"_s);
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
        server.start(u"openssl"_s,
                     QStringList{u"s_server"_s, u"-accept"_s, u"127.0.0.1:0"_s, version,
                                 u"-cipher"_s, u"DEFAULT@SECLEVEL=0"_s, u"-cert"_s,
                                 certificate.path(), u"-key"_s, certificate.keyPath()} +
                         (isAccepted ? QStringList{u"-www"_s} : QStringList()));
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
        QVERIFY(fetch(client, authorised(server.url(u"/"_s))) == HttpResult(HttpReply{200, "x"}));
        server.connection(0).send(rawReply(200, "intruder"));
        RawServer other; // once this has answered, the intruder has arrived
        other.answer({}, rawReply(200, "y"));
        QVERIFY(fetch(client, requestTo(other.url(u"/"_s))) == HttpResult(HttpReply{200, "y"}));
        for (int i = 0; i < 3; ++i) {
            QVERIFY(fetch(client, authorised(server.url(u"/"_s))) ==
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
            const auto trapped = fetch(client, authorised(server.url(u"/trap"_s)));
            QVERIFY(trapped == HttpResult(reply) || trapped == HttpResult(HttpError::Broken));
            QVERIFY(fetch(client, authorised(server.url(u"/"_s))) ==
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
