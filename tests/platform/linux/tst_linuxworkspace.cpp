#include "platform/linux/linuxworkspace.h"
#include "tests/platform/linux/busservice.h"
#include "tests/platform/linux/panelfolder.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QProcess>
#include <QRegularExpression>

#include <unistd.h>

using namespace brimlet;

namespace {

const QString mutterName = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString mutterPath = QStringLiteral("/org/gnome/Mutter/DisplayConfig");

} // namespace

class FakeLogind final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

Q_SIGNALS:
    void PrepareForSleep(bool start);
};

class FakeMutter final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Mutter.DisplayConfig")
    Q_PROPERTY(int PowerSaveMode READ powerSaveMode)

public:
    [[nodiscard]] int powerSaveMode() const {
        ++questions;
        return mode;
    }

    int mode = 0;
    mutable int questions = 0;
};

class LinuxWorkspaceTest final : public QObject {
    Q_OBJECT

private:
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
    [[nodiscard]] static QByteArray contents(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Processes whose parent is this one, ended ones included.
    [[nodiscard]] static int children() {
        int count = 0;
        const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
        for (const QString& process : processes) {
            const QByteArray stat = contents(QStringLiteral("/proc/%1/stat").arg(process));
            // The name, in brackets, may hold anything; state and parent come after it.
            const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
            if (fields.size() > 1 && fields.at(1).toInt() == getpid()) {
                ++count;
            }
        }
        return count;
    }

private Q_SLOTS:
    void initTestCase() {
        // One private bus stands for both.
        QVERIFY(qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS")));
    }

    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void suspendingTheMachinePutsTheScreensToSleep() {
        FakeLogind logind;
        const BusService service(QStringLiteral("org.freedesktop.login1"),
                                 QStringLiteral("/org/freedesktop/login1"), logind);
        QVERIFY(service.isThere());
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        record(workspace);
        Q_EMIT logind.PrepareForSleep(true);
        QTRY_COMPARE(log(), QStringLiteral("sleep"));
        Q_EMIT logind.PrepareForSleep(false);
        QTRY_COMPARE(log(), QStringLiteral("sleep wake"));
    }

    void aLogindThatGoesTakesItsSignAlong() {
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        record(workspace);
        FakeLogind logind;
        {
            const BusService service(QStringLiteral("org.freedesktop.login1"),
                                     QStringLiteral("/org/freedesktop/login1"), logind);
            Q_EMIT logind.PrepareForSleep(true);
            QTRY_COMPARE(log(), QStringLiteral("sleep"));
        }
        QTRY_COMPARE(log(), QStringLiteral("sleep wake"));
    }

    void onlyLogindsWordCounts() {
        FakeLogind logind;
        FakeLogind stranger;
        const BusService service(QStringLiteral("org.freedesktop.login1"),
                                 QStringLiteral("/org/freedesktop/login1"), logind);
        const BusService other(QStringLiteral("app.brimlet.test.Stranger"),
                               QStringLiteral("/org/freedesktop/login1"), stranger);
        QVERIFY(other.isThere());
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        record(workspace);
        Q_EMIT stranger.PrepareForSleep(true);
        Q_EMIT stranger.PrepareForSleep(false);
        Q_EMIT logind.PrepareForSleep(true);
        Q_EMIT logind.PrepareForSleep(false);
        QTRY_VERIFY(log().endsWith(QStringLiteral("wake")));
        QCOMPARE(log(), QStringLiteral("sleep wake"));
    }

    void twoHundredPairsAreAllTold() {
        FakeLogind logind;
        const BusService service(QStringLiteral("org.freedesktop.login1"),
                                 QStringLiteral("/org/freedesktop/login1"), logind);
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        record(workspace);
        for (int i = 0; i < 200; ++i) {
            Q_EMIT logind.PrepareForSleep(true);
            Q_EMIT logind.PrepareForSleep(true);
            Q_EMIT logind.PrepareForSleep(false);
        }
        QTRY_COMPARE(m_log.size(), 400);
        QCOMPARE(m_log.count(QStringLiteral("sleep")), 200);
    }

    void mutterSavingPowerIsASleep_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("log");
        QTest::newRow("unknown") << -1 << QString();
        QTest::newRow("on") << 0 << QString();
        QTest::newRow("standby") << 1 << QStringLiteral("sleep");
        QTest::newRow("suspend") << 2 << QStringLiteral("sleep");
        QTest::newRow("off") << 3 << QStringLiteral("sleep");
    }

    void mutterSavingPowerIsASleep() {
        QFETCH(const int, mode);
        QFETCH(const QString, log);
        FakeMutter mutter;
        BusService service(mutterName, mutterPath, mutter);
        QVERIFY(service.isThere());
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        record(workspace);
        setMode(service, mutter, mode);
        // A change that is sure to be seen, after the one in question.
        setMode(service, mutter, mode > 0 ? 0 : 3);
        const QString next = mode > 0 ? QStringLiteral("sleep wake") : QStringLiteral("sleep");
        QTRY_COMPARE(this->log(), next);
        QVERIFY(next.startsWith(log));
    }

    void aChangeThatIsOnlyHintedAtIsAskedFor() {
        FakeMutter mutter;
        BusService service(mutterName, mutterPath, mutter);
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        record(workspace);
        mutter.mode = 3;
        announceMode(service, {}, {QStringLiteral("PowerSaveMode")});
        QTRY_COMPARE(log(), QStringLiteral("sleep"));
    }

    void whatMutterSaidBeforeTheStartIsAskedFor() {
        FakeMutter mutter;
        mutter.mode = 3;
        const BusService service(mutterName, mutterPath, mutter);
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        record(workspace);
        QTRY_COMPARE(log(), QStringLiteral("sleep"));
    }

    void aMutterThatGoesTakesItsSignAlong() {
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        record(workspace);
        FakeMutter mutter;
        mutter.mode = 3;
        {
            const BusService service(mutterName, mutterPath, mutter);
            QTRY_COMPARE(log(), QStringLiteral("sleep"));
        }
        QTRY_COMPARE(log(), QStringLiteral("sleep wake"));
    }

    void theScreensWakeWithTheLastSign() {
        PanelFolder panels;
        FakeLogind logind;
        FakeMutter mutter;
        const BusService login(QStringLiteral("org.freedesktop.login1"),
                               QStringLiteral("/org/freedesktop/login1"), logind);
        BusService display(mutterName, mutterPath, mutter);
        LinuxWorkspace workspace(panels.path());
        record(workspace);

        const auto setPanel = [&](const char* power) {
            QVERIFY(panels.set(QStringLiteral("card0-eDP-1"), QStringLiteral("dpms"), power));
            workspace.checkPanelPower();
        };
        Q_EMIT logind.PrepareForSleep(true);
        QTRY_COMPARE(log(), QStringLiteral("sleep"));
        setPanel("Off");
        setMode(display, mutter, 3);
        setPanel("On");
        setMode(display, mutter, 0);
        // The question that follows the hint shows that what Mutter said before was heard.
        const int questions = mutter.questions;
        announceMode(display, {}, {QStringLiteral("PowerSaveMode")});
        QTRY_COMPARE(mutter.questions, questions + 1);
        QCOMPARE(log(), QStringLiteral("sleep"));
        setPanel("Off");
        Q_EMIT logind.PrepareForSleep(false);
        settle(QDBusConnection::systemBus());
        QCOMPARE(log(), QStringLiteral("sleep"));
        QTRY_VERIFY((setPanel("On"), log() == QStringLiteral("sleep wake")));
    }

    void anAddressIsOpenedOnceAndAsItIs() {
        QTemporaryDir folder;
        const QString opened = folder.filePath(QStringLiteral("opened"));
        QCOMPARE(
            QProcess::execute(sourcePath(u"tests/support/session/recording-browser"), {opened}), 0);
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        QByteArray expected;
        for (const QString& text : {QStringLiteral("https://example.com/a?b=c&d=%20e#f"),
                                    QStringLiteral("https://Example.com/$(id)/;id/%7E'(x)*"),
                                    QStringLiteral("http://localhost:8791/last")}) {
            const std::optional<Url> url = Url::fromString(text);
            QVERIFY(url);
            workspace.open(*url);
            expected += url->absoluteString().toLatin1() + '\n';
            QTRY_COMPARE_WITH_TIMEOUT(contents(opened), expected, 10000);
        }
        QCOMPARE(children(), 0);
    }

    void whatIsNoWholeAddressIsNotOpened() {
        QTemporaryDir folder;
        const QString opened = folder.filePath(QStringLiteral("opened"));
        QCOMPARE(
            QProcess::execute(sourcePath(u"tests/support/session/recording-browser"), {opened}), 0);
        LinuxWorkspace workspace(QStringLiteral("/nowhere"));
        for (const QString& text : {QStringLiteral("--help"), QStringLiteral("/etc/passwd"),
                                    QStringLiteral("//example.com/"), QStringLiteral("index")}) {
            const std::optional<Url> url = Url::fromString(text);
            QVERIFY2(url, qPrintable(text));
            workspace.open(*url);
        }
        workspace.open(*Url::fromString(u"https://example.com/last"));
        QTRY_COMPARE_WITH_TIMEOUT(contents(opened), QByteArray("https://example.com/last\n"),
                                  10000);
    }
};

BRIMLET_TEST(LinuxWorkspaceTest, QCoreApplication)
#include "tst_linuxworkspace.moc"
