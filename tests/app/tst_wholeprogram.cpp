#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QTest>

#include <csignal>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
const char* const kTitle = "Brimlet";
const QString kToken = QStringLiteral("demo-host-token");

QJsonObject machineAt(const PlacementProcess& service) {
    return {{QStringLiteral("infoDictionary"),
             QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}};
}

QJsonObject with(QJsonObject object, const char* key, const QJsonValue& value) {
    object[QString::fromLatin1(key)] = value;
    return object;
}

QJsonObject systemStore(const QJsonObject& machine) {
    return with(machine, "secretStore", QStringLiteral("system"));
}

/// Runs the secret store's own command, so that another program than Brimlet reads the item.
QByteArray secretTool(const QStringList& arguments, const QByteArray& input) {
    QProcess tool;
    tool.start(QStringLiteral("secret-tool"), arguments);
    tool.write(input);
    tool.closeWriteChannel();
    tool.waitForFinished();
    return tool.readAllStandardOutput();
}

QByteArray keptToken() {
    return secretTool({QStringLiteral("lookup"), QStringLiteral("service"),
                       QStringLiteral("app.brimlet.host"), QStringLiteral("account"),
                       QStringLiteral("host-token")},
                      {});
}

void keepToken(const QByteArray& token) {
    secretTool({QStringLiteral("store"), QStringLiteral("--label=test"), QStringLiteral("service"),
                QStringLiteral("app.brimlet.host"), QStringLiteral("account"),
                QStringLiteral("host-token")},
               token);
}

QJsonObject requestOf(const PlacementProcess& service, const QString& line) {
    const qsizetype index = service.requestLines().indexOf(line);
    return index < 0 ? QJsonObject() : service.requests().at(index).toObject();
}

/// Everything but the pictures, which are fetched as soon as they are known.
QStringList apiLines(const PlacementProcess& service) {
    return service.requestLines().filter(QStringLiteral(" /api/"));
}

QStringList headerNames(const QJsonObject& request) {
    return request.value(QStringLiteral("headers")).toObject().keys();
}

QJsonObject bodyOf(const QJsonObject& request) {
    return QJsonDocument::fromJson(request.value(QStringLiteral("body")).toString().toUtf8())
        .object();
}

const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");
const QString kDisplay = QStringLiteral("GET /api/display");
const QString kEstimate = QStringLiteral("GET /api/host/me");

} // namespace

/// The program itself with a real X server, secret service, file system and HTTP service.
class TestWholeProgram final : public QObject {
    Q_OBJECT

    XServer m_x;

    /// Whether the X server shows the panel, at this place in its own pixels.
    [[nodiscard]] bool isOnScreenAt(const QRect& place) const {
        const auto window = m_x.windowNamed(kTitle);
        return window && m_x.isMapped(*window) && m_x.geometry(*window) == place;
    }
    [[nodiscard]] bool isOnScreen() const {
        const auto window = m_x.windowNamed(kTitle);
        return window && m_x.isMapped(*window);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void withoutATokenThePublicPlacementShows() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        // 1512 points wide, notch 184 by 32: (184 + 216) + 28 wide, 32 + 8 high, centred on top.
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreenAt(QRect(542, 0, 428, 40)), kPatience);
        const QJsonObject state = program.state();
        QCOMPARE(state.value(QStringLiteral("statusLine")).toString(),
                 QStringLiteral("Ads on. Add your approved host token to qualify for payouts."));
        const QJsonObject panel = state.value(QStringLiteral("panel")).toObject();
        QCOMPARE(panel.value(QStringLiteral("frame")).toArray(), (QJsonArray{542, 942, 428, 40}));
        // Both capsules are drawn, the notch between them by the simulator.
        QTRY_VERIFY_WITH_TIMEOUT(m_x.pixel({555, 13}).lightness() < 40, kPatience);
        QVERIFY(m_x.pixel({542 + 312 + 4, 13}).lightness() < 40);
        QTRY_COMPARE_WITH_TIMEOUT(service.requestLines().count(kDisplay), 3, kPatience);
        QCOMPARE(apiLines(service).count(kDisplay), apiLines(service).size());
        const QJsonObject request = requestOf(service, kDisplay);
        QVERIFY(request.value(QStringLiteral("authorization")).isNull());
        QCOMPARE(headerNames(request),
                 (QStringList{QStringLiteral("host"), QStringLiteral("user-agent")}));
    }

    void withATokenTheFirstRequestsHaveTheirOrderHeadersAndBodies() {
        const PlacementProcess service;
        keepToken(kToken.toUtf8());
        SimulatorProcess program(systemStore(machineAt(service)));
        QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().contains(kEstimate), kPatience);
        const QStringList expected{kDisplay, kHeartbeat, kEstimate};
        QCOMPARE(apiLines(service).first(3), expected);
        const QJsonObject heartbeat = requestOf(service, kHeartbeat);
        QCOMPARE(headerNames(heartbeat),
                 (QStringList{QStringLiteral("content-length"), QStringLiteral("content-type"),
                              QStringLiteral("host"), QStringLiteral("user-agent")}));
        QCOMPARE(heartbeat.value(QStringLiteral("content_type")).toString(),
                 QStringLiteral("application/json"));
        QCOMPARE(heartbeat.value(QStringLiteral("user_agent")).toString(),
                 QStringLiteral("Brimlet/0.1.0"));
        const QJsonObject credential{{QStringLiteral("scheme"), QStringLiteral("Bearer")},
                                     {QStringLiteral("token"), QStringLiteral("known")}};
        QCOMPARE(heartbeat.value(QStringLiteral("authorization")).toObject(), credential);
        const QJsonObject body{{QStringLiteral("paused"), false},
                               {QStringLiteral("slotsVisible"),
                                QJsonArray{QStringLiteral("left"), QStringLiteral("right")}},
                               {QStringLiteral("wakeMinutes"), 0},
                               {QStringLiteral("appVersion"), QStringLiteral("0.1.0")},
                               {QStringLiteral("fromApplications"), true}};
        QCOMPARE(bodyOf(heartbeat), body);
        const QJsonObject estimate = requestOf(service, kEstimate);
        QCOMPARE(headerNames(estimate),
                 (QStringList{QStringLiteral("host"), QStringLiteral("user-agent")}));
        QCOMPARE(estimate.value(QStringLiteral("authorization")).toObject(), credential);
        QCOMPARE(estimate.value(QStringLiteral("body")).toString(), QString());
        QCOMPARE(program.statusLine(),
                 QStringLiteral("Sign the host agreement. Pay is an estimate, not a guarantee."));
    }

    void signingTheAgreementShowsTheEstimate() {
        const PlacementProcess service;
        keepToken(kToken.toUtf8());
        SimulatorProcess program(systemStore(machineAt(service)));
        QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().contains(kHeartbeat), kPatience);
        QCOMPARE(program.ask("agree").value(QStringLiteral("ok")).toBool(), true);
        QTRY_VERIFY_WITH_TIMEOUT(
            program.statusLine().startsWith(QStringLiteral("Ads on. This week ~€")), kPatience);
        const QJsonObject agree = requestOf(service, QStringLiteral("POST /api/host/agree"));
        QCOMPARE(agree.value(QStringLiteral("body")).toString(), QStringLiteral("{}"));
    }

    void theTokenSurvivesARestartInTheRealSecretStore() {
        const PlacementProcess service;
        secretTool({QStringLiteral("clear"), QStringLiteral("service"),
                    QStringLiteral("app.brimlet.host")},
                   {});
        {
            SimulatorProcess program(systemStore(machineAt(service)));
            QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
            QCOMPARE(program.state().value(QStringLiteral("hasToken")).toBool(), false);
            (void)program.ask("save-token   " + kToken.toUtf8() + " ");
            QTRY_COMPARE_WITH_TIMEOUT(keptToken(), kToken.toUtf8(), kPatience);
            QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().contains(kHeartbeat), kPatience);
        }
        {
            SimulatorProcess program(systemStore(machineAt(service)));
            QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().count(kHeartbeat) >= 2, kPatience);
            QCOMPARE(program.state().value(QStringLiteral("hasToken")).toBool(), true);
            // An all-blank text removes it for good.
            (void)program.ask("save-token  ");
            QTRY_COMPARE_WITH_TIMEOUT(keptToken(), QByteArray(), kPatience);
        }
        SimulatorProcess program(systemStore(machineAt(service)));
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
        QCOMPARE(program.state().value(QStringLiteral("hasToken")).toBool(), false);
    }

    void aTokenSavedJustBeforeTheEndIsNotLost() {
        const PlacementProcess service;
        {
            SimulatorProcess program(systemStore(machineAt(service)));
            QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
            (void)program.ask("save-token last-moment");
            (void)program.ask("quit");
        }
        QCOMPARE(keptToken(), QByteArray("last-moment"));
    }

    void pausingHidesThePanelAndReachesTheService() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
        (void)program.ask("save-token " + kToken.toUtf8());
        QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().contains(kHeartbeat), kPatience);
        (void)program.ask("pause");
        QTRY_VERIFY_WITH_TIMEOUT(!isOnScreen(), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(service.requestLines().count(kHeartbeat), 2, kPatience);
        const QJsonObject body = bodyOf(
            service.requests().at(service.requestLines().lastIndexOf(kHeartbeat)).toObject());
        QCOMPARE(body.value(QStringLiteral("paused")).toBool(), true);
        QCOMPARE(body.value(QStringLiteral("slotsVisible")).toArray(), QJsonArray());
    }

    void sleepingScreensHideThePanelAndWakingOnesShowIt() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
        program.edit({{QStringLiteral("screensAsleep"), true}});
        QTRY_VERIFY_WITH_TIMEOUT(!isOnScreen(), kPatience);
        program.edit({{QStringLiteral("screensAsleep"), false}});
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
    }

    void forceHideOfTheServiceHidesThePanel() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
        service.setScenario({{QStringLiteral("forceHide"), true}});
        QTRY_VERIFY_WITH_TIMEOUT(!isOnScreen(), kPatience);
        service.setScenario({{QStringLiteral("weekStatus"), QStringLiteral("Live")}});
        QTRY_COMPARE_WITH_TIMEOUT(program.state()
                                      .value(QStringLiteral("assignment"))
                                      .toObject()
                                      .value(QStringLiteral("weekStatus"))
                                      .toString(),
                                  QStringLiteral("Live"), kPatience);
        QVERIFY(!isOnScreen());
        service.setScenario({});
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
    }

    void aFailingServiceKeepsWhatIsShown() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
        const auto rule = [](const QJsonObject& change) {
            return QJsonObject{{QStringLiteral("endpoints"),
                                QJsonObject{{QStringLiteral("/api/display"), change}}}};
        };
        const auto failed = QStringLiteral("Could not load the live placement. Will retry.");
        const auto shown = QStringLiteral("Ads on. Add your approved host token to qualify for "
                                          "payouts.");
        for (const QJsonObject& change :
             {QJsonObject{{QStringLiteral("status"), 503}},
              QJsonObject{{QStringLiteral("fault"), QStringLiteral("close")}},
              QJsonObject{{QStringLiteral("fault"), QStringLiteral("cut")}},
              QJsonObject{{QStringLiteral("fault"), QStringLiteral("garbage")}}}) {
            service.setScenario(rule(change));
            QTRY_COMPARE_WITH_TIMEOUT(program.statusLine(), failed, kPatience);
            QVERIFY(program.isPanelShown());
            service.setScenario({});
            QTRY_COMPARE_WITH_TIMEOUT(program.statusLine(), shown, kPatience);
        }
    }

    void thePanelFollowsAChangeOfDisplays() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreenAt(QRect(542, 0, 428, 40)), kPatience);
        // The built-in screen becomes the second one, right of and 82 points below the first.
        const QJsonObject external{{QStringLiteral("number"), 5},
                                   {QStringLiteral("frame"), QJsonArray{0, 0, 400, 900}}};
        const QJsonObject own{
            {QStringLiteral("number"), 1},
            {QStringLiteral("builtIn"), true},
            {QStringLiteral("frame"), QJsonArray{400, 118, 1000, 700}},
            {QStringLiteral("auxiliaryTopLeftArea"), QJsonArray{400, 780, 400, 38}},
            {QStringLiteral("auxiliaryTopRightArea"), QJsonArray{1000, 780, 400, 38}}};
        program.edit({{QStringLiteral("displays"), QJsonArray{external, own}}});
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreenAt(QRect(900 - 222, 82, 444, 46)), kPatience);
        QCOMPARE(program.panel().value(QStringLiteral("frame")).toArray(),
                 (QJsonArray{678, 772, 444, 46}));
    }

    void withoutANotchNothingIsShownAndNothingIsSent() {
        const PlacementProcess service;
        const QJsonObject plain{{QStringLiteral("number"), 1},
                                {QStringLiteral("builtIn"), true},
                                {QStringLiteral("frame"), QJsonArray{0, 0, 1440, 900}}};
        SimulatorProcess program(with(machineAt(service), "displays", QJsonArray{plain}));
        QTRY_COMPARE_WITH_TIMEOUT(program.statusLine(), QStringLiteral("Notched MacBooks only."),
                                  kPatience);
        QVERIFY(!isOnScreen());
        QVERIFY(service.requests().isEmpty());
    }

    void aBadEditOfTheMachineIsReportedAndChangesNothing() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
        program.edit({{QStringLiteral("displays"), 3}});
        QTRY_VERIFY_WITH_TIMEOUT(
            (static_cast<void>(program.state()),
             program.complaints().contains("\"displays\" must be a list of objects; "
                                           "the machine stays as it was\n")),
            kPatience);
        QVERIFY(program.complaints().startsWith("brimlet-simulator: "));
        QVERIFY(isOnScreen());
        program.edit(
            {{QStringLiteral("displays"), QJsonArray()}, {QStringLiteral("screensAsleep"), true}});
        QTRY_VERIFY_WITH_TIMEOUT(!isOnScreen(), kPatience);
        QCOMPARE(program.state().value(QStringLiteral("hasNotch")).toBool(), true);
    }

    void screensAsleepAtTheStartKeepThePanelHidden() {
        const PlacementProcess service;
        SimulatorProcess program(with(machineAt(service), "screensAsleep", true));
        QTRY_COMPARE_WITH_TIMEOUT(service.requestLines().count(kDisplay), 2, kPatience);
        QCOMPARE(program.state().value(QStringLiteral("screenAsleep")).toBool(), true);
        QVERIFY(!isOnScreen());
        program.edit({{QStringLiteral("screensAsleep"), false}});
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
    }

    void theFirstRequestFollowsTheOverlay() {
        const PlacementProcess service;
        service.setScenario(
            {{QStringLiteral("endpoints"),
              QJsonObject{{QStringLiteral("/api/display"),
                           QJsonObject{{QStringLiteral("fault"), QStringLiteral("hang")}}}}}});
        keepToken(kToken.toUtf8());
        SimulatorProcess program(systemStore(machineAt(service)));
        QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().contains(kDisplay), kPatience);
        // No reply has arrived, so no heartbeat was sent, but the panel exists and is placed.
        QCOMPARE(program.panel().value(QStringLiteral("frame")).toArray(),
                 (QJsonArray{542, 942, 428, 40}));
        QVERIFY(!service.requestLines().contains(kHeartbeat));
    }

    void signalsEndTheProgramWithExitCodeZero_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }
    void signalsEndTheProgramWithExitCodeZero() {
        QFETCH(int, signal);
        const PlacementProcess service;
        service.setScenario(
            {{QStringLiteral("endpoints"),
              QJsonObject{{QStringLiteral("/api/host/heartbeat"),
                           QJsonObject{{QStringLiteral("fault"), QStringLiteral("hang")}}}}}});
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isOnScreen(), kPatience);
        (void)program.ask("save-token " + kToken.toUtf8());
        QTRY_VERIFY_WITH_TIMEOUT(program.state().value(QStringLiteral("hasToken")).toBool(),
                                 kPatience);
        QCOMPARE(program.endBySignal(signal), 0);
    }

    void anUnknownCommandIsAnsweredWithTheKnownOnes() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QVERIFY(program.ask("dance")
                    .value(QStringLiteral("error"))
                    .toString()
                    .contains(QStringLiteral("save-token")));
    }
};

BRIMLET_TEST(TestWholeProgram, QCoreApplication)
#include "tst_wholeprogram.moc"
