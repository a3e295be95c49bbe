#include "platform/linux/linuxreducemotion.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/sessionlock.h"
#include "tests/platform/linux/panelfolder.h"
#include "tests/support/fakeclock.h"
#include "tests/support/testprogram.h"

#include <QRegularExpression>
#include <QTest>

using namespace brimlet;

/// Without any bus, so that the panel's power state is the only source.
class PanelPowerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void onlyADarkBuiltInPanelCountsAsSleep_data() {
        using Connectors = QMap<QString, QByteArray>;
        QTest::addColumn<Connectors>("connectors");
        QTest::addColumn<bool>("isAsleep");
        const QString panel = QStringLiteral("card0-eDP-1");
        const QString external = QStringLiteral("card0-HDMI-A-1");
        const QString unused = QStringLiteral("card1-eDP-2 disconnected");
        QTest::newRow("on") << Connectors{{panel, "On"}} << false;
        QTest::newRow("off") << Connectors{{panel, "Off"}} << true;
        QTest::newRow("standby") << Connectors{{panel, "Standby"}} << true;
        QTest::newRow("suspend") << Connectors{{panel, "Suspend"}} << true;
        QTest::newRow("second card") << Connectors{{QStringLiteral("card1-eDP-1"), "Off"}} << true;
        QTest::newRow("off beside an external screen")
            << Connectors{{panel, "Off"}, {external, "On"}} << true;
        QTest::newRow("external screen off") << Connectors{{external, "Off"}} << false;
        QTest::newRow("on, its twin not connected")
            << Connectors{{panel, "On"}, {unused, "Off"}} << false;
        QTest::newRow("off, its twin not connected")
            << Connectors{{panel, "Off"}, {unused, "Off"}} << true;
        QTest::newRow("only the twin") << Connectors{{unused, "Off"}} << false;
        QTest::newRow("no connector") << Connectors{} << false;
    }

    void onlyADarkBuiltInPanelCountsAsSleep() {
        using Connectors = QMap<QString, QByteArray>;
        QFETCH(const Connectors, connectors);
        QFETCH(const bool, isAsleep);
        PanelFolder panels;
        for (auto entry = connectors.cbegin(); entry != connectors.cend(); ++entry) {
            const QStringList words = entry.key().split(u' ');
            QVERIFY(panels.set(words.first(), QStringLiteral("dpms"), entry.value()));
            QVERIFY(panels.set(words.first(), QStringLiteral("status"),
                               words.size() == 1 ? "connected" : "disconnected"));
        }
        FakeClock clock;
        LinuxWorkspace workspace(clock, panels.path());
        int sleeps = 0;
        workspace.observeScreensDidSleep([&sleeps] { ++sleeps; });
        QCOMPARE(sleeps, 0);
        workspace.checkPanelPower();
        QCOMPARE(sleeps, isAsleep ? 1 : 0);
    }

    void eachChangeIsReportedOnce() {
        PanelFolder panels;
        FakeClock clock;
        LinuxWorkspace workspace(clock, panels.path());
        QStringList log;
        workspace.observeScreensDidSleep([&log] { log << QStringLiteral("sleep"); });
        workspace.observeScreensDidWake([&log] { log << QStringLiteral("wake"); });
        for (const char* const power : {"On", "Off", "Off", "Standby", "On", "On", "Off"}) {
            QVERIFY(panels.set(QStringLiteral("card0-eDP-1"), QStringLiteral("dpms"), power));
            workspace.checkPanelPower();
        }
        QCOMPARE(log.join(u' '), QStringLiteral("sleep wake sleep"));
    }

    void aMissingFolderIsHarmless() {
        FakeClock clock;
        LinuxWorkspace workspace(clock, QStringLiteral("/nowhere"));
        int changes = 0;
        workspace.observeScreensDidSleep([&changes] { ++changes; });
        workspace.observeScreensDidWake([&changes] { ++changes; });
        workspace.checkPanelPower();
        QCOMPARE(changes, 0);
    }

    void onlyBuiltInPanelsAreDescribed() {
        PanelFolder panels;
        const auto panel = QStringLiteral("card0-eDP-1");
        QVERIFY(panels.set(panel, QStringLiteral("status"), "connected"));
        QVERIFY(panels.set(panel, QStringLiteral("modes"), "3024x1890\n1512x945"));
        QVERIFY(panels.set(panel, QStringLiteral("dpms"), "On"));
        QVERIFY(panels.set(QStringLiteral("card0-DP-1"), QStringLiteral("dpms"), "On"));
        QVERIFY(panels.set(QStringLiteral("card1-eDP-2"), QStringLiteral("modes"), ""));
        const QList<PanelFacts> expected{{panel, "connected", "3024x1890", "On"},
                                         {QStringLiteral("card1-eDP-2"), "", "", ""}};
        QVERIFY(panelFacts(panels.path()) == expected);
        QVERIFY(panelFacts(QStringLiteral("/nowhere")).isEmpty());
    }

    void theSessionIsUnlockedWithoutABus() {
        const SessionLock lock;
        QCoreApplication::processEvents();
        QVERIFY(!lock.isLocked());
    }

    void motionIsNotReducedWithoutABus() {
        const LinuxReduceMotion motion;
        QVERIFY(!motion.isOn());
    }
};

BRIMLET_TEST(PanelPowerTest, QCoreApplication)
#include "tst_panelpower.moc"
