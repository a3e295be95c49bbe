#include "platform/linux/linuxworkspace.h"
#include "tests/platform/linux/busservice.h"
#include "tests/platform/linux/panelfolder.h"
#include "tests/support/fakeclock.h"
#include "tests/support/fakelogind.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QProcess>
#include <QRegularExpression>

#include <unistd.h>

using namespace brimlet;

namespace {

const QString mutterName = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString mutterPath = QStringLiteral("/org/gnome/Mutter/DisplayConfig");

[[nodiscard]] QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The desktop's default browser, which writes the addresses that it opens to a file.
class RecordingBrowser final {
public:
    RecordingBrowser() {
        QCOMPARE(
            QProcess::execute(sourcePath(u"tests/support/session/recording-browser"), {path()}), 0);
    }
    /// The addresses, one on each line.
    [[nodiscard]] QByteArray opened() const { return contents(path()); }

private:
    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("opened")); }

    QTemporaryDir m_folder;
};

} // namespace

class FakeMutter final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Mutter.DisplayConfig")
    Q_PROPERTY(int PowerSaveMode READ powerSaveMode)

public:
    [[nodiscard]] int powerSaveMode() const {
        ++reads;
        return mode;
    }

    int mode = 0;
    mutable int reads = 0;
};

class LinuxWorkspaceTest final : public QObject {
    Q_OBJECT

private:
    FakeClock m_clock;
    QStringList m_log;

    [[nodiscard]] QString log() const { return m_log.join(u' '); }
    void record(LinuxWorkspace& workspace) {
        m_log.clear();
        workspace.observeScreensDidSleep([this] { m_log << QStringLiteral("sleep"); });
        workspace.observeScreensDidWake([this] { m_log << QStringLiteral("wake"); });
        settle(QDBusConnection::systemBus());
        settle(QDBusConnection::sessionBus());
    }
    static void announceMode(BusService& service, const QVariantMap& changed,
                             const QStringList& invalidated) {
        auto message = QDBusMessage::createSignal(mutterPath,
                                                  QStringLiteral("org.freedesktop.DBus.Properties"),
                                                  QStringLiteral("PropertiesChanged"));
        message << mutterName << changed << invalidated;
        service.connection().send(message);
    }
    static void setMode(BusService& service, FakeMutter& mutter, int mode) {
        mutter.mode = mode;
        announceMode(service, {{QStringLiteral("PowerSaveMode"), mode}}, {});
    }
    /// The number of this process's children, including ended ones not yet waited for.
    [[nodiscard]] static int children() {
        int count = 0;
        const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
        for (const QString& process : processes) {
            const QByteArray stat = contents(QStringLiteral("/proc/%1/stat").arg(process));
            // The name, in parentheses, may contain anything; state and parent follow it.
            const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
            if (fields.size() > 1 && fields.at(1).toInt() == getpid()) {
                ++count;
            }
        }
        return count;
    }

private Q_SLOTS:
    void initTestCase() {
        // The private session bus serves as the system bus too.
        QVERIFY(qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS")));
    }

    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void suspendingTheMachinePutsTheScreensToSleep() {
        FakeLogind logind;
        QVERIFY(logind.isRegistered());
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        record(workspace);
        logind.prepareForSleep(true);
        QTRY_COMPARE(log(), QStringLiteral("sleep"));
        logind.prepareForSleep(false);
        QTRY_COMPARE(log(), QStringLiteral("sleep wake"));
    }

    void whenLogindEndsItsSleepEnds() {
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        record(workspace);
        {
            FakeLogind logind;
            logind.prepareForSleep(true);
            QTRY_COMPARE(log(), QStringLiteral("sleep"));
        }
        QTRY_COMPARE(log(), QStringLiteral("sleep wake"));
    }

    void signalsOfOtherServicesAreIgnored() {
        FakeLogind logind;
        FakeLogind otherProgram(QStringLiteral("app.brimlet.test.Other"));
        QVERIFY(otherProgram.isRegistered());
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        record(workspace);
        otherProgram.prepareForSleep(true);
        otherProgram.prepareForSleep(false);
        logind.prepareForSleep(true);
        logind.prepareForSleep(false);
        QTRY_VERIFY(log().endsWith(QStringLiteral("wake")));
        QCOMPARE(log(), QStringLiteral("sleep wake"));
    }

    void aSuspendIsDelayedUntilTheObserversTasksHaveEnded() {
        FakeLogind logind;
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        std::shared_ptr<void> task;
        workspace.observeScreensDidSleep([&] { task = workspace.delaySuspend(); });
        for (int i = 1; i <= 2; ++i) {
            QTRY_VERIFY(logind.isInhibited());
            QCOMPARE(logind.taken().size(), i);
            QCOMPARE(logind.taken().last().first(), QStringLiteral("sleep"));
            QCOMPARE(logind.taken().last().last(), QStringLiteral("delay"));
            settle(QDBusConnection::systemBus());
            logind.prepareForSleep(true);
            QTRY_VERIFY(task);
            QCoreApplication::processEvents();
            QVERIFY(logind.isInhibited());
            task.reset();
            QTRY_VERIFY(!logind.isInhibited());
            logind.prepareForSleep(false);
        }
        QTRY_VERIFY(logind.isInhibited());
    }

    void aSuspendIsDelayedForTwoSecondsAtMost() {
        FakeLogind logind;
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        std::shared_ptr<void> task;
        workspace.observeScreensDidSleep([&] { task = workspace.delaySuspend(); });
        QTRY_VERIFY(logind.isInhibited());
        logind.prepareForSleep(true);
        QTRY_VERIFY(task);
        m_clock.advance(std::chrono::milliseconds(1999));
        QCoreApplication::processEvents();
        QVERIFY(logind.isInhibited());
        m_clock.advance(std::chrono::milliseconds(1));
        QTRY_VERIFY(!logind.isInhibited());
    }

    void aTaskOfAnEarlierSuspendDelaysNoLaterOne() {
        FakeLogind logind;
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        std::shared_ptr<void> task;
        workspace.observeScreensDidSleep([&] { task = workspace.delaySuspend(); });
        QTRY_VERIFY(logind.isInhibited());
        logind.prepareForSleep(true);
        QTRY_VERIFY(task);
        const auto earlier = task;
        logind.prepareForSleep(false);
        QTRY_COMPARE(logind.taken().size(), 2);
        settle(QDBusConnection::systemBus());
        logind.prepareForSleep(true);
        QTRY_VERIFY(task != earlier);
        task.reset();
        QTRY_VERIFY(!logind.isInhibited());
    }

    void withoutATaskASuspendIsNotDelayed() {
        FakeLogind logind;
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        QTRY_VERIFY(logind.isInhibited());
        logind.prepareForSleep(true);
        QTRY_VERIFY(!logind.isInhibited());
    }

    void anInhibitorIsTakenWhenLogindStartsLater() {
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        settle(QDBusConnection::systemBus());
        FakeLogind logind;
        QTRY_VERIFY(logind.isInhibited());
    }

    void twoHundredSleepsAndWakesAreReported() {
        FakeLogind logind;
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        record(workspace);
        for (int i = 0; i < 200; ++i) {
            logind.prepareForSleep(true);
            logind.prepareForSleep(true);
            logind.prepareForSleep(false);
        }
        QTRY_COMPARE(m_log.size(), 400);
        QCOMPARE(m_log.count(QStringLiteral("sleep")), 200);
    }

    void muttersPowerSavingCountsAsSleep_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("log");
        QTest::newRow("unknown") << -1 << QString();
        QTest::newRow("on") << 0 << QString();
        QTest::newRow("standby") << 1 << QStringLiteral("sleep");
        QTest::newRow("suspend") << 2 << QStringLiteral("sleep");
        QTest::newRow("off") << 3 << QStringLiteral("sleep");
    }

    void muttersPowerSavingCountsAsSleep() {
        QFETCH(const int, mode);
        QFETCH(const QString, log);
        FakeMutter mutter;
        BusService service(mutterName, mutterPath, mutter);
        QVERIFY(service.isRegistered());
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        record(workspace);
        setMode(service, mutter, mode);
        // A later change that is always reported shows that the first one was processed.
        setMode(service, mutter, mode > 0 ? 0 : 3);
        const QString next = mode > 0 ? QStringLiteral("sleep wake") : QStringLiteral("sleep");
        QTRY_COMPARE(this->log(), next);
        QVERIFY(next.startsWith(log));
    }

    void anInvalidatedModeIsReadAgain() {
        FakeMutter mutter;
        BusService service(mutterName, mutterPath, mutter);
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        record(workspace);
        mutter.mode = 3;
        announceMode(service, {}, {QStringLiteral("PowerSaveMode")});
        QTRY_COMPARE(log(), QStringLiteral("sleep"));
    }

    void muttersModeIsReadAtTheStart() {
        FakeMutter mutter;
        mutter.mode = 3;
        const BusService service(mutterName, mutterPath, mutter);
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        record(workspace);
        QTRY_COMPARE(log(), QStringLiteral("sleep"));
    }

    void whenMutterEndsItsSleepEnds() {
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        record(workspace);
        FakeMutter mutter;
        mutter.mode = 3;
        {
            const BusService service(mutterName, mutterPath, mutter);
            QTRY_COMPARE(log(), QStringLiteral("sleep"));
        }
        QTRY_COMPARE(log(), QStringLiteral("sleep wake"));
    }

    void theScreensWakeWhenNoSourceReportsSleep() {
        PanelFolder panels;
        FakeLogind logind;
        FakeMutter mutter;
        BusService display(mutterName, mutterPath, mutter);
        LinuxWorkspace workspace(m_clock, panels.path());
        record(workspace);

        const auto setPanel = [&](const char* power) {
            QVERIFY(panels.set(QStringLiteral("card0-eDP-1"), QStringLiteral("dpms"), power));
            workspace.checkPanelPower();
        };
        logind.prepareForSleep(true);
        QTRY_COMPARE(log(), QStringLiteral("sleep"));
        setPanel("Off");
        setMode(display, mutter, 3);
        setPanel("On");
        setMode(display, mutter, 0);
        // Once Mutter is queried because of this signal, its earlier signals have been processed.
        const int reads = mutter.reads;
        announceMode(display, {}, {QStringLiteral("PowerSaveMode")});
        QTRY_COMPARE(mutter.reads, reads + 1);
        QCOMPARE(log(), QStringLiteral("sleep"));
        setPanel("Off");
        logind.prepareForSleep(false);
        settle(QDBusConnection::systemBus());
        QCOMPARE(log(), QStringLiteral("sleep"));
        QTRY_VERIFY((setPanel("On"), log() == QStringLiteral("sleep wake")));
    }

    void anAddressIsOpenedOnceAndUnchanged() {
        const RecordingBrowser browser;
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        QByteArray expected;
        for (const QString& text : {QStringLiteral("https://example.com/a?b=c&d=%20e#f"),
                                    QStringLiteral("https://Example.com/$(id)/;id/%7E'(x)*"),
                                    QStringLiteral("http://localhost:8791/last")}) {
            const std::optional<Url> url = Url::fromString(text);
            QVERIFY(url);
            workspace.open(*url);
            expected += url->absoluteString().toLatin1() + '\n';
            QTRY_COMPARE_WITH_TIMEOUT(browser.opened(), expected, 10000);
        }
        QCOMPARE(children(), 0);
    }

    void addressesWithoutASchemeAreNotOpened() {
        const RecordingBrowser browser;
        LinuxWorkspace workspace(m_clock, QStringLiteral("/nowhere"));
        for (const QString& text : {QStringLiteral("--help"), QStringLiteral("/etc/passwd"),
                                    QStringLiteral("//example.com/"), QStringLiteral("index")}) {
            const std::optional<Url> url = Url::fromString(text);
            QVERIFY2(url, qPrintable(text));
            workspace.open(*url);
        }
        workspace.open(*Url::fromString(u"https://example.com/last"));
        QTRY_COMPARE_WITH_TIMEOUT(browser.opened(), QByteArray("https://example.com/last\n"),
                                  10000);
    }
};

BRIMLET_TEST(LinuxWorkspaceTest, QCoreApplication)
#include "tst_linuxworkspace.moc"
