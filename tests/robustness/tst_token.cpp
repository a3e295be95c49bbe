#include "tests/robustness/survival.h"
#include "tests/support/emulated.h"
#include "tests/support/testprogram.h"

#include <QProcess>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace brimlet::faults;

namespace {

const int kPatience = 20'000 * slowness(); // milliseconds

QByteArray redirect(int status, const QString& location) {
    return rawReply(status, {}, "Location: " + location.toUtf8() + "\r\n");
}

/// The options for a self-signed certificate for 127.0.0.1 and its key.
QStringList ownIdentity(const QTemporaryDir& folder) {
    const QString certificate = folder.filePath(QStringLiteral("cert.pem"));
    const QString key = folder.filePath(QStringLiteral("key.pem"));
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                   QStringLiteral("ec"), QStringLiteral("-pkeyopt"),
                   QStringLiteral("ec_paramgen_curve:P-256"), QStringLiteral("-nodes"),
                   QStringLiteral("-subj"), QStringLiteral("/CN=test"), QStringLiteral("-addext"),
                   QStringLiteral("subjectAltName=IP:127.0.0.1"), QStringLiteral("-keyout"), key,
                   QStringLiteral("-out"), certificate});
    openssl.waitForFinished(kPatience);
    return {QStringLiteral("--certificate"), certificate, QStringLiteral("--key"), key};
}

} // namespace

/// Which requests carry the token.
class TestToken final : public QObject {
    Q_OBJECT

    std::unique_ptr<WatchedProgram> m_watched;

private Q_SLOTS:
    void initTestCase() {
        m_watched = std::make_unique<WatchedProgram>();
        m_watched->otherServer().follow(
            {{QStringLiteral("answers"),
              QJsonObject{{QString(), QJsonArray{reply(404, "nothing here")}}}}});
        begin(*m_watched);
    }
    void cleanupTestCase() { m_watched.reset(); }

    void aRedirectSurvives_data() {
        QTest::addColumn<Fault>("fault");
        const QString other = m_watched->otherServer().root();
        const QString own = m_watched->service().root();
        const auto addRow = [](const QString& name, int status, const QString& to) {
            QTest::newRow(qPrintable(name)) << Fault{
                WatchedProgram::everywhere({send(redirect(status, to))}), Outcome::Rejected};
        };
        for (const int status : {301, 302, 303, 307, 308}) {
            addRow(QStringLiteral("15: %1 to another port").arg(status), status,
                   other + QStringLiteral("/take"));
        }
        addRow(QStringLiteral("15: to another host on the same port"), 302,
               QString(own).replace(u"127.0.0.1"_s, u"localhost"_s) + QStringLiteral("/x"));
        addRow(QStringLiteral("15: to another scheme"), 302,
               QString(own).replace(u"http:"_s, u"https:"_s) + QStringLiteral("/x"));
        addRow(QStringLiteral("15: to a file"), 302, QStringLiteral("file:///etc/passwd"));
        addRow(QStringLiteral("15: to another server with the own host as its user name"), 302,
               QString(other).replace(u"http://"_s, u"http://127.0.0.1@"_s));
        addRow(QStringLiteral("15: to another server by a URL without a scheme"), 302,
               other.mid(5) + QStringLiteral("/take"));
        addRow(QStringLiteral("15: to an invalid address"), 302, QStringLiteral("//["));
        addRow(QStringLiteral("15: to itself without end"), 302, QStringLiteral("/api/host/me"));
        QTest::newRow("15: without an address")
            << Fault{WatchedProgram::everywhere({reply(302, {})}), Outcome::Rejected};
    }
    void aRedirectSurvives() {
        QFETCH(Fault, fault);
        survive(*m_watched, fault);
    }

    // Case 15
    void upToThreeHopsWithinTheServiceAreFollowed_data() {
        QTest::addColumn<int>("hops");
        QTest::newRow("15: three hops within the service") << 3;
        QTest::newRow("15: four hops within the service") << 4;
    }
    void upToThreeHopsWithinTheServiceAreFollowed() {
        QFETCH(int, hops);
        QJsonObject script = WatchedProgram::everywhere(
            {send(redirect(307, QStringLiteral("/hop%1").arg(hops - 1)))});
        QJsonObject answers = script.value(QStringLiteral("answers")).toObject();
        for (int hop = hops - 1; hop > 0; --hop) {
            answers[QStringLiteral("/hop%1").arg(hop)] =
                QJsonArray{send(redirect(307, QStringLiteral("/hop%1").arg(hop - 1)))};
        }
        answers[QStringLiteral("/hop0")] = QJsonArray{reply(200, m_watched->otherBody())};
        script[QStringLiteral("answers")] = answers;
        survive(*m_watched, {script, hops <= 3 ? Outcome::Applied : Outcome::Rejected});
    }

    // Cases 15 and 16
    void onlyAuthorisedRequestsToTheServiceCarryTheToken() {
        QVERIFY(m_watched->otherServer().received().contains("GET /take"));
        QVERIFY(!m_watched->otherServer().received().contains("Authorization"));
        qsizetype pictures = 0;
        for (const RawRequest& request : m_watched->service().requests()) {
            const QByteArray target = request.target();
            if (target == "/left" || target == "/right" || target == "/api/display") {
                pictures += target == "/api/display" ? 0 : 1;
                QVERIFY2(request.header("Authorization").isNull(), request.head);
            }
        }
        QVERIFY(pictures >= 2);
    }

    void anOddTokenSurvives_data() {
        QTest::addColumn<QByteArray>("token");
        QTest::addColumn<bool>("isSent");
        const QByteArray canary = WatchedProgram::token();
        QTest::newRow("18: a carriage return") << canary + "\rX-Evil: 1" << false;
        QTest::newRow("18: NUL") << canary + QByteArray(1, '\0') + "x" << false;
        QTest::newRow("18: a bell") << canary + "\ax" << false;
        QTest::newRow("18: ten kilobytes") << canary + QByteArray(10 * 1024, 'x') << true;
        QTest::newRow("18: letters beyond ASCII") << canary + "\xC3\xA4\xE2\x82\xAC" << true;
        QTest::newRow("18: a tab") << canary + "\tx" << true;
        QTest::newRow("18: blanks and colons") << canary + " a: b; c" << true;
    }
    void anOddTokenSurvives() {
        QFETCH(QByteArray, token);
        QFETCH(bool, isSent);
        const qsizetype start = m_watched->service().received().size();
        (void)m_watched->program().ask("save-token " + token);
        if (isSent) {
            QTRY_VERIFY_WITH_TIMEOUT(m_watched->service().received().mid(start).contains(
                                         "\r\nAuthorization: Bearer " + token + "\r\n"),
                                     kPatience);
        } else {
            QVERIFY(m_watched->reaches(statusOf(Outcome::TransferFailed)));
        }
        const QByteArray received = m_watched->service().received().mid(start);
        QVERIFY(isSent || !received.contains("X-Evil"));
        QVERIFY(isSent || !received.contains(token));
        m_watched->askAll();
        QVERIFY(m_watched->reaches(WatchedProgram::goodStatus()));
        QTRY_COMPARE_WITH_TIMEOUT(m_watched->complaint(), QString(), kPatience);
    }

    void anOddRootSurvives_data() {
        QTest::addColumn<Fault>("fault");
        const QString own = m_watched->service().root();
        const QJsonObject notFound{
            {QStringLiteral("answers"), QJsonObject{{QString(), QJsonArray{reply(404, {})}}}}};
        const auto addRow = [&](const char* name, const QString& root,
                                Outcome outcome = Outcome::TransferFailed) {
            QTest::newRow(name) << Fault{notFound, outcome, root};
        };
        addRow("19: a port beyond all ports", QStringLiteral("http://127.0.0.1:65536"));
        addRow("19: a port far beyond", QStringLiteral("http://127.0.0.1:99999999999999999999"));
        addRow("19: port 0", QStringLiteral("http://127.0.0.1:0"));
        addRow("19: a file", QStringLiteral("file:///etc"));
        addRow("19: no host", QStringLiteral("http://"));
        addRow("19: words", QStringLiteral("somewhere"));
        addRow("19: empty", QStringLiteral(""));
        addRow("19: a name that is too long",
               u"http://"_s + QString(2000, u'a') + QStringLiteral(".test"));
        addRow("19: an address that does not parse", QStringLiteral("http://["), Outcome::Nothing);
        addRow("19: ending in a slash", own + u'/', Outcome::Rejected);
        addRow("19: a name and a password before the host",
               QString(own).replace(u"http://"_s, u"http://name:pass@"_s), Outcome::Rejected);
    }
    void anOddRootSurvives() {
        QFETCH(Fault, fault);
        survive(*m_watched, fault);
    }

    // Case 19
    void aRootIsJoinedToThePathAsItIs() {
        const QByteArray received = m_watched->service().received();
        QVERIFY(received.contains("GET //api/display HTTP/1.1"));
        QVERIFY(received.contains("POST //api/host/heartbeat HTTP/1.1"));
        QVERIFY(!received.contains("Authorization: Basic"));
    }

    // Case 20
    void aSelfSignedServiceReceivesNothing() {
        const QTemporaryDir folder;
        FaultServerProcess impostor(ownIdentity(folder));
        QVERIFY(impostor.root().startsWith(u"https://"_s));
        impostor.follow(WatchedProgram::everywhere({reply(200, m_watched->otherBody())}));
        survive(*m_watched, {{}, Outcome::TransferFailed, impostor.root()});
        QCOMPARE(impostor.received(), QByteArray());
    }

    // Case 20
    void plainHttpOnATlsPortReceivesNoRequest() {
        FaultServerProcess plain;
        plain.follow({{QStringLiteral("greeting"), QJsonArray{reply(400, "speak plainly")}}});
        survive(
            *m_watched,
            {{}, Outcome::TransferFailed, QString(plain.root()).replace(u"http:"_s, u"https:"_s)});
        QVERIFY(!plain.received().isEmpty());
        QVERIFY(!plain.received().contains("/api/"));
        QVERIFY(!plain.received().contains(WatchedProgram::token()));
    }
};

BRIMLET_TEST(TestToken, QCoreApplication)
#include "tst_token.moc"
