#include "platform/linux/sessionlock.h"
#include "tests/platform/linux/busservice.h"
#include "tests/support/fakelocker.h"
#include "tests/support/testprogram.h"

#include <optional>

using namespace brimlet;

namespace {

const QString kLogind = QStringLiteral("org.freedesktop.login1");
const QString kScreenSaver = QStringLiteral("org.freedesktop.ScreenSaver");
const QString kGnome = QStringLiteral("org.gnome.ScreenSaver");

} // namespace

class TestSessionLock final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        // The private session bus serves as the system bus too.
        QVERIFY(qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS")));
    }

    void eachServiceIsReadAtTheStartAndAtItsSignals_data() {
        QTest::addColumn<QString>("service");
        QTest::newRow("logind") << kLogind;
        QTest::newRow("the desktop's screen saver") << kScreenSaver;
        QTest::newRow("GNOME's screen saver") << kGnome;
    }
    void eachServiceIsReadAtTheStartAndAtItsSignals() {
        QFETCH(const QString, service);
        FakeLocker locker(service, true);
        QVERIFY(locker.isRegistered());
        // It could not answer if this waited for it: both share the thread.
        const SessionLock lock;
        QVERIFY(!lock.isLocked());
        QTRY_VERIFY(lock.isLocked());
        locker.setLocked(false);
        QTRY_VERIFY(!lock.isLocked());
        locker.setLocked(true);
        QTRY_VERIFY(lock.isLocked());
    }

    void itIsLockedWhileAnyOfThemSaysSo() {
        std::optional<FakeLocker> logind(std::in_place, kLogind);
        FakeLocker gnome(kGnome);
        const SessionLock lock;
        logind->setLocked(true);
        QTRY_VERIFY(lock.isLocked());
        gnome.setLocked(true);
        settle(QDBusConnection::sessionBus());
        logind->setLocked(false);
        settle(QDBusConnection::sessionBus());
        QTRY_COMPARE(gnome.queries(), 2);
        QVERIFY(lock.isLocked());
        gnome.setLocked(false);
        QTRY_VERIFY(!lock.isLocked());
    }

    void aServiceThatEndsOrStartsAnewIsReadAgain() {
        std::optional<FakeLocker> locker(std::in_place, kLogind, true);
        const SessionLock lock;
        QTRY_VERIFY(lock.isLocked());
        locker.reset();
        QTRY_VERIFY(!lock.isLocked());
        locker.emplace(kLogind, true);
        QTRY_VERIFY(lock.isLocked());
    }

    void signalsOfOtherServicesAreIgnored() {
        FakeLocker locker(kScreenSaver);
        const BusService other(QStringLiteral("app.brimlet.test.Other"),
                               QStringLiteral("/org/freedesktop/ScreenSaver"), *this);
        const SessionLock lock;
        QTRY_COMPARE(locker.queries(), 1);
        auto signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/ScreenSaver"),
                                                 kScreenSaver, QStringLiteral("ActiveChanged"));
        signal << true;
        QVERIFY(QDBusConnection(QStringLiteral("app.brimlet.test.Other")).send(signal));
        settle(QDBusConnection(QStringLiteral("app.brimlet.test.Other")));
        locker.setLocked(true);
        QTRY_VERIFY(lock.isLocked());
        QCOMPARE(locker.queries(), 2);
    }
};

BRIMLET_TEST(TestSessionLock, QCoreApplication)
#include "tst_sessionlock.moc"
