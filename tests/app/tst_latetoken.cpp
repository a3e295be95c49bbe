#include "tests/support/emulated.h"
#include "tests/support/keyring.h"
#include "tests/support/pointer.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QTest>

#include <optional>

using namespace brimlet;

namespace {

const int kPatience = 20'000 * slowness();
const QString kDisplay = QStringLiteral("GET /api/display");
const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");

} // namespace

/// A keyring that cannot give the token when the program starts.
class TestLateToken final : public QObject {
    Q_OBJECT

    std::optional<Keyring> m_keyring;
    std::optional<PlacementProcess> m_service;
    XServer m_x;

    [[nodiscard]] QJsonObject machine() const {
        return {{QStringLiteral("infoDictionary"),
                 QJsonObject{{QStringLiteral("BrimletAPIURL"), m_service->root()}}},
                {QStringLiteral("secretStore"), QStringLiteral("system")}};
    }
    [[nodiscard]] static bool hasToken(SimulatorProcess& program) {
        return program.state().value(QStringLiteral("hasToken")).toBool();
    }
    [[nodiscard]] qsizetype polls() const { return m_service->requestLines().count(kDisplay); }
    /// The token is used, and was tried at once: a display request, then a heartbeat.
    void compareTokenIsTried(SimulatorProcess& program) const {
        QTRY_VERIFY_WITH_TIMEOUT(hasToken(program), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(m_service->requestLines().count(kHeartbeat), 1, kPatience);
        const QStringList requests = m_service->requestLines();
        const qsizetype heartbeat = requests.indexOf(kHeartbeat);
        QVERIFY(heartbeat > 0);
        QCOMPARE(requests.at(heartbeat - 1), kDisplay);
        // The service accepts the token; the agreement is not signed yet.
        QTRY_COMPARE_WITH_TIMEOUT(
            program.statusLine(),
            QStringLiteral("Sign the host agreement. Pay is an estimate, not a guarantee."),
            kPatience);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }
    void init() {
        m_keyring.emplace(QStringLiteral("app.brimlet.host"), QStringLiteral("host-token"),
                          "demo-host-token");
        m_service.emplace();
    }
    void cleanup() { m_keyring.reset(); }

    void aKeyringUnlockedTwentySecondsAfterTheStart() {
        m_keyring->startLocked();
        SimulatorProcess program(machine());
        QVERIFY(!hasToken(program));
        // One at the start, then one every three seconds.
        QTRY_VERIFY_WITH_TIMEOUT(polls() >= 8, 2 * kPatience);
        QVERIFY(!hasToken(program));
        QCOMPARE(m_service->requestLines().count(kHeartbeat), 0);
        m_keyring->unlock();
        compareTokenIsTried(program);
        QCOMPARE(program.complaints(), QByteArray());
    }

    void aKeyringStartedAfterTheProgram() {
        SimulatorProcess program(machine());
        QTRY_VERIFY_WITH_TIMEOUT(polls() >= 2, kPatience);
        QVERIFY(!hasToken(program));
        m_keyring->startUnlocked();
        compareTokenIsTried(program);
        QCOMPARE(program.complaints(), QByteArray());
    }

    void aPromptAnsweredLateDoesNotHoldUpTheProgram() {
        const KeyringPrompter prompter;
        m_keyring->startLocked();
        SimulatorProcess program(machine());
        QTRY_VERIFY_WITH_TIMEOUT(prompter.isShown(), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(polls() >= 3, kPatience);
        QVERIFY(!hasToken(program));
        prompter.giveRightPassword();
        compareTokenIsTried(program);
        QCOMPARE(program.complaints(), QByteArray());
    }

    void savingAnUntouchedFieldKeepsATokenThatWasNotSeen() {
        m_keyring->startLocked();
        SimulatorProcess program(machine());
        (void)program.ask("open");
        std::optional<ClientWindow> panel;
        const auto findPanel = [&] {
            for (const ClientWindow& window : m_x.windowsOf(program.pid())) {
                if (window.title == QStringLiteral("Brimlet panel") && window.isViewable) {
                    panel = window;
                }
            }
            return panel.has_value();
        };
        QTRY_VERIFY_WITH_TIMEOUT(findPanel() && m_x.focus() == panel->id, kPatience);
        // The centre of "Save token": above it are 16 points and two buttons of 34 with gaps of 14.
        const QRect place = panel->geometry;
        click({place.center().x(), place.y() + place.height() - 16 - 17 - 2 * 48});
        const qsizetype displays = polls();
        QTRY_VERIFY_WITH_TIMEOUT(polls() > displays, kPatience);
        m_keyring->unlock();
        compareTokenIsTried(program);
    }
};

BRIMLET_TEST(TestLateToken, QCoreApplication)
#include "tst_latetoken.moc"
