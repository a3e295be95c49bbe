#include "platform/linux/startupnotification.h"
#include "tests/support/rootmessages.h"
#include "tests/support/testprogram.h"

#include <QGuiApplication>
#include <QTest>

using namespace brimlet;

/// The reports that end the desktop's busy pointer.
class TestStartupNotification final : public QObject {
    Q_OBJECT

    RootMessages m_messages;

    [[nodiscard]] QByteArray receivedText() {
        QByteArrayList texts;
        const auto isReceived = [&] {
            texts += m_messages.takeStartupInfo();
            return !texts.isEmpty();
        };
        [&] { QTRY_VERIFY(isReceived()); }();
        return texts.join(" and ");
    }

private Q_SLOTS:
    void theIdIsTakenOutOfTheEnvironment_data() {
        QTest::addColumn<QByteArray>("startupId");
        QTest::addColumn<QByteArray>("token");
        QTest::addColumn<QByteArray>("taken");
        QTest::newRow("neither") << QByteArray() << QByteArray() << QByteArray();
        QTest::newRow("X11") << QByteArray("a_TIME7") << QByteArray() << QByteArray("a_TIME7");
        QTest::newRow("Wayland") << QByteArray() << QByteArray("t") << QByteArray("t");
        QTest::newRow("both") << QByteArray("a_TIME7") << QByteArray("t") << QByteArray("a_TIME7");
    }
    void theIdIsTakenOutOfTheEnvironment() {
        QFETCH(QByteArray, startupId);
        QFETCH(QByteArray, token);
        if (!startupId.isEmpty()) {
            qputenv("DESKTOP_STARTUP_ID", startupId);
        }
        if (!token.isEmpty()) {
            qputenv("XDG_ACTIVATION_TOKEN", token);
        }
        QTEST(takeStartupId(), "taken");
        QVERIFY(!qEnvironmentVariableIsSet("DESKTOP_STARTUP_ID"));
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    }

    void anIdIsLeftForQt() {
        leaveStartupId({});
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
        leaveStartupId("t");
        QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("t"));
        QCOMPARE(takeStartupId(), QByteArray("t"));
    }

    void theDesktopsCallHoldsTheId_data() {
        QTest::addColumn<QVariantMap>("platformData");
        QTest::addColumn<QByteArray>("id");
        const QString onX11 = QStringLiteral("desktop-startup-id");
        const QString onWayland = QStringLiteral("activation-token");
        QTest::newRow("nothing") << QVariantMap() << QByteArray();
        QTest::newRow("X11") << QVariantMap{{onX11, QStringLiteral("x")}} << QByteArray("x");
        QTest::newRow("Wayland") << QVariantMap{{onWayland, QStringLiteral("t")}}
                                 << QByteArray("t");
        QTest::newRow("both") << QVariantMap{{onX11, QStringLiteral("x")},
                                             {onWayland, QStringLiteral("t")}}
                              << QByteArray("x");
        QTest::newRow("no text") << QVariantMap{{onX11, QVariantList{1, 2}}} << QByteArray();
    }
    void theDesktopsCallHoldsTheId() {
        QFETCH(QVariantMap, platformData);
        QTEST(startupIdIn(platformData), "id");
    }

    void everyProgramGetsTheReport_data() {
        QTest::addColumn<QByteArray>("id");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("in one piece") << QByteArray("a") << QByteArray("remove: ID=\"a\"");
        // With the quotes it is 20 bytes long, so the null byte is in a piece of its own.
        QTest::newRow("as long as a piece")
            << QByteArray("1234567") << QByteArray("remove: ID=\"1234567\"");
        QTest::newRow("in several pieces")
            << QByteArray("gnome-shell/Brimlet/4711-0-host_TIME123456")
            << QByteArray("remove: ID=\"gnome-shell/Brimlet/4711-0-host_TIME123456\"");
        QTest::newRow("quoted") << QByteArray("a\"b\\c")
                                << QByteArray("remove: ID=\"a\\\"b\\\\c\"");
    }
    void everyProgramGetsTheReport() {
        QFETCH(QByteArray, id);
        completeStartup(id);
        QTEST(receivedText(), "message");
    }

    void withoutAUsableIdNothingIsReported() {
        completeStartup({});
        completeStartup(QByteArray(1025, 'x'));
        completeStartup("after it");
        QCOMPARE(receivedText(), QByteArray("remove: ID=\"after it\""));
    }
};

BRIMLET_TEST(TestStartupNotification, QGuiApplication)
#include "tst_startupnotification.moc"
