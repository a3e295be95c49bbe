#include "tests/platform/linux/busservice.h"
#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/sanitized.h"
#include "tests/support/screenreader.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <optional>

using namespace brimlet;

namespace {

const int kPatience = 20'000 * slowness();
const QString kToken = QStringLiteral("demo-host-token");
const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");
const QString kEstimate = QStringLiteral("GET /api/host/me");
const QString kDisplays = QStringLiteral("displays");

/// The overlay's place on the 14-inch machine, in pixels of the X server.
const QRect kHome(542, 0, 428, 40);

QJsonObject display(int number, const QJsonArray& frame) {
    return {{QStringLiteral("number"), number}, {QStringLiteral("frame"), frame}};
}

/// The built-in display, with a notch of 184 by 32 points.
QJsonObject builtIn(int x, int y, int width, int height) {
    const int side = (width - 184) / 2;
    QJsonObject own = display(1, {x, y, width, height});
    own[QStringLiteral("builtIn")] = true;
    own[QStringLiteral("auxiliaryTopLeftArea")] = QJsonArray{x, y + height - 32, side, 32};
    own[QStringLiteral("auxiliaryTopRightArea")] =
        QJsonArray{x + side + 184, y + height - 32, side, 32};
    return own;
}

int xrandr(const QStringList& arguments) {
    return QProcess::execute(QStringLiteral("xrandr"), arguments);
}

} // namespace

class FakeSleep final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

Q_SIGNALS:
    void PrepareForSleep(bool start);
};

/// Cases 36 to 40: what happens to the whole program on a desktop. The session has no tray.
class TestDesktop final : public QObject {
    Q_OBJECT

    XServer m_x;
    std::optional<QTemporaryDir> m_folder;
    std::optional<PlacementProcess> m_service;

    [[nodiscard]] static QJsonObject machine(int speed, const PlacementProcess& service) {
        return {{QStringLiteral("infoDictionary"),
                 QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
                {QStringLiteral("speed"), speed}};
    }
    [[nodiscard]] QJsonObject machine(int speed) const { return machine(speed, *m_service); }
    /// The overlay's place on the X server; empty when it is not mapped.
    [[nodiscard]] QRect overlay() const {
        const auto window = m_x.windowNamed("Brimlet");
        return window && m_x.isMapped(*window) ? m_x.geometry(*window) : QRect();
    }
    /// Waits until the overlay is at the place. False also when it was seen anywhere but at its old
    /// or new place meanwhile.
    [[nodiscard]] bool overlayMovesTo(const QRect& place) const {
        const QRect before = overlay();
        bool isElsewhere = false;
        const bool isThere = QTest::qWaitFor(
            [&] {
                const QRect now = overlay();
                isElsewhere = isElsewhere || !(now.isEmpty() || now == before || now == place);
                return now == place;
            },
            kPatience);
        return isThere && !isElsewhere;
    }
    [[nodiscard]] static bool isMenuOpen(SimulatorProcess& program) {
        return program.state().value(QStringLiteral("isMenuOpen")).toBool();
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session");
        m_folder.emplace();
        m_service.emplace();
    }
    void init() { m_service->setScenario({}); }

    void figuresAreTheSameInEveryEnvironment_data() {
        QTest::addColumn<EnvironmentChanges>("environment");
        const QString none;
        const auto locale = [this](const char* name) {
            return EnvironmentChanges{{QStringLiteral("LC_ALL"), QString::fromLatin1(name)},
                                      {QStringLiteral("LANGUAGE"), QString::fromLatin1(name)},
                                      {QStringLiteral("LOCPATH"), m_folder->path()}};
        };
        QTest::newRow("Turkish") << locale("tr_TR.UTF-8");
        QTest::newRow("German") << locale("de_DE.UTF-8");
        QTest::newRow("C") << locale("C");
        QTest::newRow("one that does not exist") << locale("eo_XX.UTF-8");
        const QString home = QStringLiteral("HOME");
        EnvironmentChanges folders;
        for (const char* const name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME",
                                       "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
            folders.insert(QString::fromLatin1(name), none);
        }
        QTest::newRow("no HOME") << EnvironmentChanges{{home, none}};
        QTest::newRow("no XDG folders") << folders;
        folders.insert(home, QStringLiteral("/dev/null/at/all"));
        QTest::newRow("a HOME that does not exist") << folders;
        for (auto it = folders.begin(); it != folders.end(); ++it) {
            *it = QStringLiteral("/dev/null/at/all");
        }
        QTest::newRow("no folder exists") << folders;
    }
    void figuresAreTheSameInEveryEnvironment() {
        QFETCH(EnvironmentChanges, environment);
        // Compiled here, so that the machine need not have them.
        const QString locale = environment.value(QStringLiteral("LC_ALL"));
        if (locale.startsWith(u"tr") || locale.startsWith(u"de")) {
            QCOMPARE(QProcess::execute(QStringLiteral("localedef"),
                                       {QStringLiteral("-i"), locale.left(5), QStringLiteral("-f"),
                                        QStringLiteral("UTF-8"), m_folder->filePath(locale)}),
                     0);
        }
        // The same from both endpoints, since the reply that arrives last wins.
        const QJsonObject figures{
            {QStringLiteral("merge"), QJsonObject{{QStringLiteral("agreed"), true},
                                                  {QStringLiteral("estimatedCents"), 1234},
                                                  {QStringLiteral("pendingStipendCents"), 5}}}};
        m_service->setScenario({{QStringLiteral("endpoints"),
                                 QJsonObject{{QStringLiteral("/api/host/me"), figures},
                                             {QStringLiteral("/api/host/heartbeat"), figures}}}});
        environment.insert(QStringLiteral("QT_FATAL_WARNINGS"), QString()); // Qt warns about some
        SimulatorProcess program(machine(60), environment);
        QTRY_COMPARE_WITH_TIMEOUT(overlay(), kHome, kPatience);
        const qsizetype before = m_service->requestLines().count(kHeartbeat);
        (void)program.ask("save-token " + kToken.toUtf8());
        // The heartbeat follows the last display request, whose reply sets another line.
        QTRY_VERIFY_WITH_TIMEOUT(m_service->requestLines().count(kHeartbeat) > before, kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(program.statusLine(),
                                  QStringLiteral("Ads on. This week ~€12.34 estimate."), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(isMenuOpen(program), kPatience);
        const auto isRead = [](const QString& text) {
            for (const QJsonObject& element : ScreenReader::elements(
                     {QStringLiteral("window"), QStringLiteral("Brimlet panel")})) {
                if (element.value(QStringLiteral("name")).toString().contains(text)) {
                    return true;
                }
            }
            return false;
        };
        QTRY_VERIFY_WITH_TIMEOUT(isRead(QStringLiteral("€12.34")), kPatience);
        QVERIFY(isRead(QStringLiteral("€0.05")));
        QCOMPARE(program.endBySignal(SIGTERM), 0);
    }

    void theOverlayStaysWithTheBuiltInScreen() {
        SimulatorProcess program(machine(60));
        QVERIFY(overlayMovesTo(kHome));
        const QJsonObject own = builtIn(0, 0, 1512, 982);
        const QJsonObject second = display(5, {1512, 100, 800, 600});
        const auto use = [&](const QJsonArray& displays) { program.edit({{kDisplays, displays}}); };
        use({own, second}); // added on the right
        use({second, own}); // in another order, which makes it the primary one
        use({own, second});
        QVERIFY(overlayMovesTo(kHome));
        // The external one becomes the primary one, with the laptop below and right of it.
        const QJsonObject first = display(5, {0, 0, 400, 900});
        use({first, builtIn(400, 118, 1000, 700)});
        QVERIFY(overlayMovesTo(QRect(400 + 500 - 214, 82, 428, 40)));
        use({first, builtIn(400, 218, 800, 600)}); // rescaled
        QVERIFY(overlayMovesTo(QRect(400 + 400 - 214, 82, 428, 40)));
        use({first, builtIn(400, 18, 600, 800)}); // rotated
        QVERIFY(overlayMovesTo(QRect(400 + 300 - 214, 82, 428, 40)));
        // The lid is closed: the overlay keeps its place.
        const QRect last = overlay();
        for (const QJsonArray& others :
             {QJsonArray{first}, QJsonArray{first, second}, QJsonArray()}) {
            use(others);
            const qsizetype polls = m_service->requests().size();
            QTRY_VERIFY_WITH_TIMEOUT(m_service->requests().size() > polls + 10, kPatience);
            QVERIFY(overlayMovesTo(last));
        }
        use({own, second});
        QVERIFY(overlayMovesTo(kHome));
        use({own});
        QVERIFY(overlayMovesTo(kHome));
    }

    void monitorsThatComeAndGoDoNotMoveIt() {
        SimulatorProcess program(machine(60));
        QVERIFY(overlayMovesTo(kHome));
        const QString monitor = QStringLiteral("HDMI-1");
        const QString place = QStringLiteral("800/200x600/150+1512+100");
        for (int i = 0; i < 5; ++i) {
            for (const QString& name : {monitor, u'*' + monitor}) { // beside, then primary
                QCOMPARE(
                    xrandr({QStringLiteral("--setmonitor"), name, place, QStringLiteral("none")}),
                    0);
                const qsizetype polls = m_service->requests().size();
                QTRY_VERIFY_WITH_TIMEOUT(m_service->requests().size() > polls + 2, kPatience);
                QVERIFY(overlayMovesTo(kHome));
                QCOMPARE(xrandr({QStringLiteral("--delmonitor"), monitor}), 0);
                QVERIFY(overlayMovesTo(kHome));
            }
        }
        QCOMPARE(program.complaints(), QByteArray());
    }

    void twoHundredSleepsAreFourHundredHeartbeats() {
        const PlacementProcess placement; // a service with a short log
        const auto heartbeats = [&placement] { return placement.requestLines().count(kHeartbeat); };
        const auto polls = [&placement] { return placement.requestLines().count(kEstimate); };
        FakeSleep logind;
        const BusService service(QStringLiteral("org.freedesktop.login1"),
                                 QStringLiteral("/org/freedesktop/login1"), logind);
        QVERIFY(service.isRegistered());
        // Polls are 150 milliseconds apart, heartbeats by the clock 45 seconds.
        SimulatorProcess program(machine(20, placement),
                                 {{QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                                   qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS")}});
        QTRY_VERIFY_WITH_TIMEOUT(program.statusLine().startsWith(QStringLiteral("Ads on. Add")),
                                 kPatience);
        (void)program.ask("save-token " + kToken.toUtf8());
        QTRY_COMPARE_WITH_TIMEOUT(heartbeats(), 1, kPatience);
        // By then the start-up memory has been trimmed.
        QTRY_VERIFY_WITH_TIMEOUT(polls() > 20, kPatience);
        const QString status = program.statusLine();
        const ProcessMeasures measures = program.measures();
        constexpr int kChanges = 400;
        QTimer pace;
        int changes = 0;
        connect(&pace, &QTimer::timeout, &pace, [&] {
            Q_EMIT logind.PrepareForSleep(changes % 2 == 0);
            if (++changes == kChanges) {
                pace.stop();
            }
        });
        QElapsedTimer time;
        time.start();
        pace.start(10'000 / kChanges);
        QTRY_COMPARE_WITH_TIMEOUT(changes, kChanges, 3 * kPatience);
        qInfo("%lld ms", static_cast<long long>(time.elapsed()));
        QTRY_COMPARE_WITH_TIMEOUT(heartbeats(), 1 + kChanges, kPatience);
        // Polls continue at their interval: no second timer was started.
        const qsizetype then = polls();
        time.restart();
        QTRY_VERIFY_WITH_TIMEOUT(polls() >= then + 10, kPatience);
        QVERIFY2(time.elapsed() > 10 * 150 - 300, QByteArray::number(time.elapsed()).constData());
        QCOMPARE(heartbeats(), 1 + kChanges);
        QCOMPARE(program.statusLine(), status);
        QCOMPARE(overlay(), kHome);
        const ProcessMeasures after = program.measures();
        qInfo("%lld KiB more, %lld descriptors, %lld threads",
              static_cast<long long>((after.residentBytes - measures.residentBytes) / 1024),
              static_cast<long long>(after.descriptors), static_cast<long long>(after.threads));
        // A sanitizer keeps freed memory for a while.
        QVERIFY(kIsSanitized ||
                after.residentBytes < measures.residentBytes + qint64{8} * 1024 * 1024);
        QTRY_VERIFY_WITH_TIMEOUT(program.measures().descriptors <= measures.descriptors + 2,
                                 kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(program.measures().threads <= measures.threads, kPatience);
    }

    void itStartsAfterAKill() {
        for (int i = 0; i < 2; ++i) {
            SimulatorProcess program(machine(60));
            QTRY_COMPARE_WITH_TIMEOUT(overlay(), kHome, kPatience);
            QCOMPARE(program.startAgain(), 0);
            QTRY_VERIFY_WITH_TIMEOUT(isMenuOpen(program), kPatience);
            program.kill();
            QTRY_COMPARE_WITH_TIMEOUT(overlay(), QRect(), kPatience);
        }
    }

    void withoutATrayThePanelOpensAndALateTrayGetsTheItem() {
        SimulatorProcess program(machine(60));
        QTRY_VERIFY_WITH_TIMEOUT(isMenuOpen(program), kPatience);
        for (int i = 0; i < 2; ++i) { // the second time it restarts
            QProcess tray;
            tray.start(sourcePath(u"tests/support/session/tray-host"),
                       {QStringLiteral("notifier")});
            const auto items = [] {
                const auto question = QDBusMessage::createMethodCall(
                    QStringLiteral("app.brimlet.test.Tray"), QStringLiteral("/tray"),
                    QStringLiteral("app.brimlet.test.Tray"), QStringLiteral("Items"));
                return QDBusConnection::sessionBus().call(question).arguments().value(0).toString();
            };
            QTRY_VERIFY_WITH_TIMEOUT(items().contains(QStringLiteral("Brimlet")), kPatience);
            tray.kill();
            QVERIFY(tray.waitForFinished(kPatience));
        }
        QCOMPARE(program.complaints(), QByteArray());
        QCOMPARE(program.endBySignal(SIGTERM), 0);
    }

    void itEndsWithinASecond_data() {
        QTest::addColumn<int>("signal");
        QTest::addColumn<QString>("hanging");
        QTest::addColumn<bool>("isPanelOpen");
        for (const auto& [name, signal] : {std::pair{"SIGTERM", SIGTERM}, {"SIGINT", SIGINT}}) {
            QTest::addRow("%s", name) << signal << QString() << false;
            QTest::addRow("%s while requests hang", name)
                << signal << QStringLiteral("/api") << true;
            QTest::addRow("%s while pictures hang", name)
                << signal << QStringLiteral("/assets") << false;
            QTest::addRow("%s with the panel open", name) << signal << QString() << true;
        }
    }
    void itEndsWithinASecond() {
        QFETCH(int, signal);
        QFETCH(QString, hanging);
        QFETCH(bool, isPanelOpen);
        QJsonObject endpoints;
        for (const char* const path : {"/api/display", "/api/host/heartbeat", "/api/host/me",
                                       "/assets/quiet-bicycle.png", "/assets/palindrome-tea.png"}) {
            const QString text = QString::fromLatin1(path);
            if (!hanging.isEmpty() && text.startsWith(hanging)) {
                endpoints[text] = QJsonObject{{QStringLiteral("fault"), QStringLiteral("hang")}};
            }
        }
        m_service->setScenario({{QStringLiteral("endpoints"), endpoints}});
        const qsizetype before = m_service->requestLines().filter(hanging).size();
        SimulatorProcess program(machine(isPanelOpen ? 60 : 1));
        (void)program.ask("save-token " + kToken.toUtf8());
        QTRY_VERIFY_WITH_TIMEOUT(m_service->requestLines().filter(hanging).size() >= before + 2,
                                 kPatience);
        if (isPanelOpen) {
            QTRY_VERIFY_WITH_TIMEOUT(isMenuOpen(program), kPatience);
        }
        QElapsedTimer time;
        time.start();
        QCOMPARE(program.endBySignal(signal), 0);
        qInfo("%lld ms", static_cast<long long>(time.elapsed()));
        QVERIFY2(time.elapsed() < 1000 * slowness(),
                 QByteArray::number(time.elapsed()).constData());
        QCOMPARE(program.complaints(), QByteArray());
    }
};

BRIMLET_TEST(TestDesktop, QCoreApplication)
#include "tst_desktop.moc"
