#include "tests/service/prism.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

constexpr int kPatience = 60'000; // milliseconds; the mock takes its time on a busy machine
/// A poll every 30 milliseconds, a heartbeat every 9 seconds.
constexpr int kSpeed = 100;
const QString kDisplay = QStringLiteral("GET /api/display");
const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");
const QString kEstimate = QStringLiteral("GET /api/host/me");
const QString kAgreement = QStringLiteral("POST /api/host/agree");

/// No picture is fetched from beyond this computer.
const EnvironmentChanges kWithoutNetwork{
    {QStringLiteral("https_proxy"), QStringLiteral("http://127.0.0.1:9")},
    {QStringLiteral("no_proxy"), {}},
};

} // namespace

/// The whole program and a mock service that knows docs/service/openapi.yaml only, and that judges
/// every request.
class TestMock final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyRequestOfADayKeepsToTheDocument() {
        PrismProcess mock({QStringLiteral("mock"), serviceDocument()});
        if (!mock.missing().isEmpty()) {
            QSKIP(qPrintable(mock.missing()));
        }
        QVERIFY(!mock.root().isEmpty());
        const auto count = [&mock](const QString& request) {
            return mock.judgement().requests.count(request);
        };
        SimulatorProcess program({{QStringLiteral("infoDictionary"),
                                   QJsonObject{{QStringLiteral("BrimletAPIURL"), mock.root()}}},
                                  {QStringLiteral("secretStore"), QStringLiteral("memory")},
                                  {QStringLiteral("speed"), kSpeed}},
                                 kWithoutNetwork);

        // First start.
        QTRY_COMPARE_WITH_TIMEOUT(
            program.statusLine(),
            QStringLiteral("Ads on. Add your approved host token to qualify for payouts."),
            kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(count(kDisplay) > 2, kPatience);
        QCOMPARE(count(kHeartbeat), 0);

        // Token, agreement.
        (void)program.ask("save-token a-token");
        QTRY_COMPARE_WITH_TIMEOUT(program.statusLine(),
                                  QStringLiteral("Ads on. This week ~€2.12 estimate."), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(count(kHeartbeat), 1, kPatience);
        (void)program.ask("agree");
        QTRY_COMPARE_WITH_TIMEOUT(count(kAgreement), 1, kPatience);

        // Sleep and wake, and a heartbeat by the clock alone.
        qsizetype heartbeats = count(kHeartbeat);
        program.edit({{QStringLiteral("screensAsleep"), true}});
        QTRY_VERIFY_WITH_TIMEOUT(count(kHeartbeat) > heartbeats, kPatience);
        QVERIFY(!program.isPanelShown());
        heartbeats = count(kHeartbeat);
        program.edit({{QStringLiteral("screensAsleep"), false}});
        QTRY_VERIFY_WITH_TIMEOUT(count(kHeartbeat) > heartbeats, kPatience);
        heartbeats = count(kHeartbeat);
        QTRY_VERIFY_WITH_TIMEOUT(count(kHeartbeat) > heartbeats, kPatience);

        // Pause.
        heartbeats = count(kHeartbeat);
        (void)program.ask("pause");
        QTRY_VERIFY_WITH_TIMEOUT(count(kHeartbeat) > heartbeats, kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(program.statusLine(),
                                  QStringLiteral("Ads off. This week ~€2.12 estimate."), kPatience);
        (void)program.ask("quit");
        QCOMPARE(program.exitCode(), 0);

        const PrismProcess::Judgement& judgement = mock.judgement();
        QCOMPARE(judgement.deviations.join(u'\n'), QString());
        // The mock sends an ETag, so only the first polls and the others have no condition.
        const qsizetype posts = judgement.requests.filter(QStringLiteral("POST ")).size();
        QVERIFY(judgement.conditional > judgement.requests.size() / 2);
        QVERIFY(judgement.conditional <= judgement.requests.size() - posts - 2);
        QCOMPARE(QSet<QString>(judgement.requests.begin(), judgement.requests.end()),
                 (QSet<QString>{kDisplay, kHeartbeat, kEstimate, kAgreement}));
        qInfo("the mock judged %lld requests, %lld of them conditional, and found %lld violations",
              qlonglong{judgement.requests.size()}, qlonglong{judgement.conditional},
              qlonglong{judgement.deviations.size()});
    }

    void theMockFindsAWrongRequest() {
        PrismProcess mock({QStringLiteral("mock"), serviceDocument()});
        if (!mock.missing().isEmpty()) {
            QSKIP(qPrintable(mock.missing()));
        }
        QCOMPARE(mock.get("/api/host/heartbeat"), QByteArray());
        QCOMPARE(mock.judgement().requests, QStringList{QStringLiteral("GET /api/host/heartbeat")});
        QVERIFY(!mock.judgement().deviations.isEmpty());
    }
};

BRIMLET_TEST(TestMock, QCoreApplication)
#include "tst_mock.moc"
