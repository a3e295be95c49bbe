#include "tests/service/prism.h"
#include "tests/support/processes.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <optional>

using namespace brimlet;

namespace {

constexpr int kPatience = 60'000; // milliseconds; the proxy takes its time on a busy machine
/// A poll every 150 milliseconds; a request may take 3 seconds, which a busy machine needs.
constexpr int kSpeed = 20;
const QString kDisplay = QStringLiteral("GET /api/display");
const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");
const QString kEstimate = QStringLiteral("GET /api/host/me");
const QString kAgreement = QStringLiteral("POST /api/host/agree");
const char* const kNotLoaded = "Could not load the live placement. Will retry.";
const char* const kRejected = "Server rejected the host token.";

QJsonObject parsed(const QByteArray& json) {
    return QJsonDocument::fromJson(json).object();
}

/// A scenario that changes the replies of one path.
QByteArray changing(const char* path, const char* rule) {
    return QByteArray("{\"endpoints\":{\"") + path + "\":" + rule + "}}";
}

/// The complete example of the page on scenarios.
QByteArray documentedExample() {
    QFile file(sourcePath(u"docs/placement.md"));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray page = file.readAll();
    const QByteArray fence = "```json\n";
    const qsizetype begin = page.indexOf(fence) + fence.size();
    return page.mid(begin, page.indexOf("```\n", begin) - begin);
}

} // namespace

/// The whole program and the development placement service, with a proxy between them that judges
/// requests and replies by docs/service/openapi.yaml.
class TestProxy final : public QObject {
    Q_OBJECT

    std::optional<PlacementProcess> m_service;
    std::optional<PrismProcess> m_proxy;
    std::optional<SimulatorProcess> m_program;

    [[nodiscard]] qsizetype count(const QString& request) const {
        return m_service->requestLines().count(request);
    }
    void waitForTwoMore(const QString& poll) const {
        const qsizetype now = count(poll);
        QTRY_VERIFY_WITH_TIMEOUT(count(poll) >= now + 2, kPatience);
    }

private Q_SLOTS:
    void initTestCase() {
        m_service.emplace();
        m_proxy.emplace(QStringList{QStringLiteral("proxy"), serviceDocument(), m_service->root()});
        if (!m_proxy->missing().isEmpty()) {
            QSKIP(qPrintable(m_proxy->missing()));
        }
        QVERIFY(!m_proxy->root().isEmpty());
        m_program.emplace(
            QJsonObject{{QStringLiteral("infoDictionary"),
                         QJsonObject{{QStringLiteral("BrimletAPIURL"), m_proxy->root()}}},
                        {QStringLiteral("secretStore"), QStringLiteral("memory")},
                        {QStringLiteral("speed"), kSpeed}});
    }

    void cleanupTestCase() {
        if (m_program) {
            (void)m_program->ask("quit");
            QCOMPARE(m_program->exitCode(), 0);
            const PrismProcess::Judgement& all = m_proxy->judgement();
            qInfo("the proxy judged %lld requests and their replies, %lld of them with 304",
                  qlonglong{all.requests.size()}, qlonglong{all.unchanged});
            QVERIFY(all.unchanged > 0);
        }
    }

    void aScenarioIsJudged_data() {
        QTest::addColumn<QByteArray>("scenario");
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("statusLine"); // how it begins
        QTest::addColumn<bool>("isSound");       // requests and replies keep to the document
        const auto row = [](const char* name, const QByteArray& scenario, const char* token,
                            const char* statusLine, bool isSound) {
            QTest::newRow(name) << scenario << QString::fromLatin1(token)
                                << QString::fromUtf8(statusLine) << isSound;
        };
        const auto sound = [&row](const char* name, const QByteArray& scenario,
                                  const char* statusLine) {
            row(name, scenario, "demo-host-token", statusLine, true);
        };
        const auto display = [&row](const char* name, const char* rule, bool isSound,
                                    const char* statusLine = kNotLoaded) {
            row(name, changing("/api/display", rule), "", statusLine, isSound);
        };
        constexpr auto* kOn = "Ads on. This week ~€";
        constexpr auto* kOff = "Ads off. This week ~€";
        sound("none", "{}", kOn);
        sound("the example", documentedExample(), "Ads on. This week ~€12.34 estimate.");
        row("tokens", R"({"tokens":["second-host-token"]})", "second-host-token", kOn, true);
        row("another token", R"({"tokens":["second-host-token"]})", "demo-host-token", kRejected,
            true);
        sound("agreementText", R"({"agreementText":"Sign here."})", kOn);
        sound("weekStatus", R"({"weekStatus":"unfilled"})", kOff);
        sound("forceHide", R"({"forceHide":true})", kOff);
        sound("poolCents, liveHosts", R"({"poolCents":70000,"liveHosts":9})", kOn);
        sound("creatives",
              R"({"creatives":[{"slotId":"right","brandName":"One","tagline":"Two"}]})", kOn);
        sound("no creatives", R"({"creatives":[]})", kOn);
        sound("merge", changing("/api/host/me", R"({"merge":{"estimatedCents":5}})"),
              "Ads on. This week ~€0.05 estimate.");
        sound("remove", changing("/api/host/me", R"({"remove":["agreed","agreementText"]})"),
              "Sign the host agreement.");
        sound("delayMs", changing("/api/host/heartbeat", R"({"delayMs":300})"), kOn);
        sound("headers", changing("/api/host/me", R"({"headers":{"Server":"one"}})"), kOn);
        sound("status with a token", changing("/api/host/me", R"({"status":500})"), kRejected);
        display("status", R"({"status":503})", true);
        display("status 204", R"({"status":204})", true);
        // What a service must not send.
        display("close", R"({"fault":"close"})", false);
        display("garbage", R"({"fault":"garbage"})", false);
        display("text", R"({"text":"no JSON"})", false);
        display("body", R"({"body":[1]})", false);
        display("merge null", R"({"merge":{"weekStatus":null}})", false,
                "No live placement right now.");
        display("another slot", R"({"merge":{"creatives":[{"slotId":"Left"}]}})", false,
                "Ads on. Add your approved host token");
        display("a forbidden link",
                R"({"merge":{"creatives":[{"slotId":"left","brandUrl":"ftp://a.example/"}]}})",
                false, "Ads on. Add your approved host token");
        // The proxy waits for the rest, so that it judges nothing and the program gives up.
        display("cut", R"({"fault":"cut"})", true);
        display("hang", R"({"fault":"hang"})", true);
    }
    void aScenarioIsJudged() {
        QFETCH(QByteArray, scenario);
        QFETCH(QString, token);
        QFETCH(QString, statusLine);
        QFETCH(bool, isSound);
        QVERIFY(parsed(scenario) != QJsonObject() || scenario == "{}");
        // Without a token only the display is asked for. Nothing of the row before is under way.
        m_service->setScenario({});
        (void)m_program->ask("save-token  ");
        QTRY_VERIFY_WITH_TIMEOUT(
            m_program->statusLine().startsWith(QStringLiteral("Ads on. Add your")), kPatience);
        waitForTwoMore(kDisplay);
        const qsizetype before = m_proxy->judgement().deviations.size();
        const auto deviations = [&] { return m_proxy->judgement().deviations.mid(before); };

        m_service->setScenario(parsed(scenario));
        if (token.isEmpty()) {
            waitForTwoMore(kDisplay);
        } else {
            const QList<qsizetype> counts{count(kDisplay), count(kHeartbeat), count(kAgreement)};
            (void)m_program->ask("save-token " + token.toUtf8());
            (void)m_program->ask("agree");
            QTRY_VERIFY_WITH_TIMEOUT(count(kDisplay) > counts.at(0) &&
                                         count(kHeartbeat) > counts.at(1) &&
                                         count(kAgreement) > counts.at(2),
                                     kPatience);
            waitForTwoMore(kEstimate);
        }
        QTRY_VERIFY2_WITH_TIMEOUT(m_program->statusLine().startsWith(statusLine),
                                  qPrintable(m_program->statusLine()), kPatience);
        if (isSound) {
            QCOMPARE(deviations().join(u'\n'), QString());
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(!deviations().isEmpty(), kPatience);
        }
    }
};

BRIMLET_TEST(TestProxy, QCoreApplication)
#include "tst_proxy.moc"
