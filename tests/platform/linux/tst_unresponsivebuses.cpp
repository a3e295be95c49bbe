#include "platform/linux/linuxworkspace.h"
#include "platform/linux/unresponsivebuses.h"
#include "tests/support/emulated.h"
#include "tests/support/fakeclock.h"
#include "tests/support/stubbus.h"
#include "tests/support/testprogram.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace brimlet;

namespace {

constexpr const char* kSession = "DBUS_SESSION_BUS_ADDRESS";
constexpr const char* kSystem = "DBUS_SYSTEM_BUS_ADDRESS";

} // namespace

/// In a desktop with a working session bus. A disabled bus stays disabled, so the order matters.
class TestUnresponsiveBuses final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(qEnvironmentVariable("HOME").contains(u"/brimlet-session."),
                 "this test needs script/desktop-session");
    }

    void aBusThatAnswersKeepsItsAddress() {
        const QByteArray session = qgetenv(kSession);
        qputenv(kSystem, session);
        QElapsedTimer time;
        time.start();
        disableUnresponsiveBuses();
        qInfo("%lld us", static_cast<long long>(time.nsecsElapsed() / 1000));
        QVERIFY2(time.elapsed() < 500 * slowness(), QByteArray::number(time.elapsed()).constData());
        QCOMPARE(qgetenv(kSession), session);
        QCOMPARE(qgetenv(kSystem), session);
        QVERIFY(childEnvironment() == QProcessEnvironment::systemEnvironment());
    }

    void twoUnresponsiveBusesAreDisabledWithinASecond() {
        const StubBus session(StubBus::Kind::Silent);
        const StubBus system(StubBus::Kind::Mute);
        qputenv(kSession, session.address().toUtf8());
        qputenv(kSystem, system.address().toUtf8());
        const auto before = QProcessEnvironment::systemEnvironment();
        QElapsedTimer time;
        time.start();
        disableUnresponsiveBuses();
        QVERIFY(!QDBusConnection::sessionBus().isConnected());
        QVERIFY(!QDBusConnection::systemBus().isConnected());
        QVERIFY2(time.elapsed() < 1500 * slowness(),
                 QByteArray::number(time.elapsed()).constData());
        QVERIFY(childEnvironment() == before);
        // A second call changes nothing.
        disableUnresponsiveBuses();
        QVERIFY(childEnvironment() == before);
    }

    void openedProgramsGetTheOriginalBusAddress() {
        QTemporaryDir folder;
        QFile opener(folder.filePath(QStringLiteral("xdg-open")));
        const QString noted = folder.filePath(QStringLiteral("noted"));
        QVERIFY(opener.open(QIODevice::WriteOnly));
        opener.write("#!/bin/sh\nprintf %s \"$DBUS_SESSION_BUS_ADDRESS\" >'" +
                     QFile::encodeName(noted) + "'\n");
        opener.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        opener.close();
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(folder.path()) + ':' + path);
        FakeClock clock;
        LinuxWorkspace workspace(clock, QStringLiteral("/nowhere"));
        workspace.open(*Url::fromString(QStringLiteral("https://brand.test/")));
        qputenv("PATH", path);
        const auto text = [&noted] {
            QFile file(noted);
            return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        };
        QTRY_COMPARE(text(), childEnvironment().value(QString::fromLatin1(kSession)));
        QVERIFY(text() != qEnvironmentVariable(kSession));
    }
};

BRIMLET_TEST(TestUnresponsiveBuses, QCoreApplication)
#include "tst_unresponsivebuses.moc"
