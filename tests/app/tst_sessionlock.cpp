#include "tests/support/emulated.h"
#include "tests/support/fakelocker.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QGuiApplication>

#include <optional>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

} // namespace

/// The whole program in a session that is locked and unlocked.
class TestSessionLock final : public QObject {
    Q_OBJECT

    XServer m_x;

    [[nodiscard]] bool isMapped() const {
        const auto window = m_x.windowNamed("Brimlet");
        return window && m_x.isMapped(*window);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void aLockHidesTheWindowAndSendsNothing_data() {
        QTest::addColumn<QString>("service");
        for (const char* const service :
             {"org.freedesktop.login1", "org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver"}) {
            QTest::newRow(service) << QString::fromLatin1(service);
        }
    }
    void aLockHidesTheWindowAndSendsNothing() {
        QFETCH(const QString, service);
        const PlacementProcess placement;
        std::optional<FakeLocker> locker(std::in_place, service);
        QVERIFY(locker->isRegistered());
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), placement.root()}}},
             {QStringLiteral("speed"), 20}},
            {{QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
              qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS")}});
        (void)program.ask("save-token demo-host-token");
        const QString estimate = QStringLiteral("GET /api/host/me");
        QTRY_VERIFY_WITH_TIMEOUT(isMapped() && placement.requestLines().contains(estimate),
                                 kPatience);
        const auto passesPolls = [&] {
            const qsizetype count = placement.requestLines().size();
            return QTest::qWaitFor([&] { return placement.requestLines().size() >= count + 5; },
                                   kPatience);
        };
        // The first requests are over, and what they bring is shown.
        QVERIFY(passesPolls());
        const QJsonObject state = program.state();
        const qsizetype before = placement.requests().size();

        locker->setLocked(true);
        QTRY_VERIFY_WITH_TIMEOUT(!isMapped(), kPatience);
        QVERIFY(passesPolls());
        QVERIFY(!isMapped());
        QVERIFY(program.isPanelShown()); // the store and the rules do not read the lock
        QCOMPARE(program.state().value(QStringLiteral("statusLine")),
                 state.value(QStringLiteral("statusLine")));

        locker->setLocked(false);
        QTRY_VERIFY_WITH_TIMEOUT(isMapped(), kPatience);

        // A locker that ends without a word, and one that is already there at the start.
        locker->setLocked(true);
        QTRY_VERIFY_WITH_TIMEOUT(!isMapped(), kPatience);
        locker.reset();
        QTRY_VERIFY_WITH_TIMEOUT(isMapped(), kPatience);
        locker.emplace(service, true);
        QTRY_VERIFY_WITH_TIMEOUT(!isMapped(), kPatience);
        // A lock does not keep what is to be hidden.
        (void)program.ask("pause");
        locker->setLocked(false);
        QVERIFY(passesPolls());
        QVERIFY(!isMapped());

        QStringList others = placement.requestLines().sliced(before);
        others.removeAll(estimate);
        QCOMPARE(others, QStringList{QStringLiteral("POST /api/host/heartbeat")}); // of the pause
        QCOMPARE(program.complaints(), QByteArray());
    }
};

BRIMLET_TEST(TestSessionLock, QGuiApplication)
#include "tst_sessionlock.moc"
