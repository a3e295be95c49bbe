#include "app/linuxdiagnosis.h"
#include "tests/platform/linux/kernelfolder.h"
#include "tests/platform/linux/writefile.h"
#include "tests/support/emulated.h"
#include "tests/support/keyring.h"
#include "tests/support/processes.h"
#include "tests/support/stubbus.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QProcess>
#include <QSysInfo>
#include <QTest>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
/// For all that does not answer within its limit.
constexpr int kLongestDiagnosis = 6000;

QProcessEnvironment changed(const EnvironmentChanges& changes) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (auto change = changes.cbegin(); change != changes.cend(); ++change) {
        if (change.value().isNull()) {
            environment.remove(change.key());
        } else {
            environment.insert(change.key(), change.value());
        }
    }
    return environment;
}

/// A secret service that owns its name and never answers: this thread does not run its event loop
/// while it waits for the program.
class HungSecretService final : public QDBusVirtualObject {
public:
    HungSecretService()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                              QStringLiteral("hung secret service"))) {
        m_bus.registerVirtualObject(QStringLiteral("/org"), this, QDBusConnection::SubPath);
        m_isRegistered = m_bus.registerService(QStringLiteral("org.freedesktop.secrets"));
    }
    ~HungSecretService() override {
        m_bus.unregisterService(QStringLiteral("org.freedesktop.secrets"));
        QDBusConnection::disconnectFromBus(m_bus.name());
    }
    HungSecretService(const HungSecretService&) = delete;
    HungSecretService& operator=(const HungSecretService&) = delete;

    [[nodiscard]] bool isRegistered() const { return m_isRegistered; }
    bool handleMessage(const QDBusMessage& /*call*/, const QDBusConnection& /*bus*/) override {
        return true;
    }
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

private:
    QDBusConnection m_bus;
    bool m_isRegistered = false;
};

} // namespace

/// The report of the real program, in a session that has neither a keyring nor a tray of its own.
class TestDiagnose final : public QObject {
    Q_OBJECT

    XServer m_x;

    /// The report's lines, or how the program failed: too late, with a complaint or by its exit
    /// code.
    static QStringList diagnose(const EnvironmentChanges& changes = {}) {
        QProcess program;
        program.setProcessEnvironment(changed(changes));
        program.start(programPath(u"brimlet"), {QStringLiteral("--diagnose")});
        if (!program.waitForFinished(kLongestDiagnosis)) {
            return {QStringLiteral("did not end in time")};
        }
        const QByteArray complaints = program.readAllStandardError();
        if (program.exitStatus() != QProcess::NormalExit || program.exitCode() != 0 ||
            !complaints.isEmpty()) {
            return {QStringLiteral("exit code %1").arg(program.exitCode()),
                    QString::fromUtf8(complaints)};
        }
        return QString::fromUtf8(program.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    }
    static QStringList startingWith(const QStringList& lines, const char* name) {
        return lines.filter(
            QRegularExpression(u'^' + QString::fromLatin1(name) + QStringLiteral(": ")));
    }
    static void compareLine(const QStringList& lines, const char* line) {
        QVERIFY2(lines.contains(QString::fromLatin1(line)), qPrintable(lines.join(u'\n')));
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void theSessionIsDescribed() {
        const QStringList lines = diagnose();
        compareLine(lines, "Brimlet: 0.1.0");
        compareLine(lines, "Desktop: X-Generic");
        compareLine(lines, "Session type: x11");
        compareLine(lines, "Wayland: WAYLAND_DISPLAY is not set");
        compareLine(lines, "X11 compositor: yes");
        compareLine(lines, "Overlay: X11, since WAYLAND_DISPLAY is not set");
        compareLine(lines,
                    "Screen: eDP-1, 1512 x 982 points at 0,0, scale 1, ratio 1.5397, built in");
        compareLine(lines, "Suspend, logind: no bus that answers");
        compareLine(lines, "Session locked, screen saver: not running");
        const QStringList x11 = startingWith(lines, "X11");
        QVERIFY2(x11.value(0).startsWith(QStringLiteral("X11: X server ")),
                 qPrintable(lines.join(u'\n')));
        QFile release(QStringLiteral("/etc/os-release"));
        QVERIFY(release.open(QIODevice::ReadOnly));
        const auto name = QRegularExpression(QStringLiteral("^PRETTY_NAME=\"?([^\"\n]*)"),
                                             QRegularExpression::MultilineOption)
                              .match(QString::fromUtf8(release.readAll()));
        QCOMPARE(startingWith(lines, "System"),
                 QStringList(QStringLiteral("System: ") + name.captured(1)));
    }

    void theTrayIsFound_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("notifier");
        QTest::addColumn<QString>("xembed");
        const auto running = QStringLiteral("StatusNotifier tray: yes");
        const auto notRunning = QStringLiteral("StatusNotifier tray: not running");
        const auto yes = QStringLiteral("XEmbed tray: yes");
        const auto no = QStringLiteral("XEmbed tray: no");
        QTest::newRow("none") << QString() << notRunning << no;
        QTest::newRow("notifier") << QStringLiteral("notifier") << running << no;
        QTest::newRow("xembed") << QStringLiteral("xembed") << notRunning << yes;
    }
    void theTrayIsFound() {
        QFETCH(const QString, kind);
        QFETCH(const QString, notifier);
        QFETCH(const QString, xembed);
        QProcess tray;
        if (!kind.isEmpty()) {
            tray.start(sourcePath(u"tests/support/session/tray-host"), {kind});
        }
        QStringList lines;
        const auto isFound = [&] {
            lines = diagnose();
            return lines.contains(notifier) && lines.contains(xembed);
        };
        QTRY_VERIFY2_WITH_TIMEOUT(isFound(), qPrintable(lines.join(u'\n')), kPatience);
        tray.kill();
        tray.waitForFinished();
        QTRY_VERIFY_WITH_TIMEOUT(diagnose().contains(QStringLiteral("XEmbed tray: no")), kPatience);
    }

    void thereIsNoSecretService() { compareLine(diagnose(), "Secret service: not running"); }

    void theKeyringsStateIsFoundAndItsTokenKept_data() {
        QTest::addColumn<QString>("state");
        for (const char* const state : {"unlocked", "locked", "has no default collection"}) {
            QTest::newRow(state) << QString::fromLatin1(state);
        }
    }
    void theKeyringsStateIsFoundAndItsTokenKept() {
        QFETCH(const QString, state);
        const QByteArray token = "demo-host-token";
        Keyring keyring(QStringLiteral("app.brimlet.host"), QStringLiteral("host-token"), token);
        if (state == u"unlocked") {
            keyring.startUnlocked();
        } else if (state == u"locked") {
            keyring.startLocked();
        } else {
            keyring.startEmpty();
        }
        const QString report = diagnose().join(u'\n');
        QVERIFY2(report.contains(QStringLiteral("Secret service: ") + state + u'\n'),
                 qPrintable(report));
        QVERIFY2(!report.contains(QString::fromLatin1(token)), qPrintable(report));
    }

    void aSecretServiceThatHangs() {
        const HungSecretService service;
        QVERIFY(service.isRegistered());
        compareLine(diagnose(), "Secret service: no answer");
    }

    void neitherUserNorMachineIsNamed() {
        const QString report = diagnose().join(u'\n');
        QVERIFY2(report.startsWith(QStringLiteral("Brimlet: ")), qPrintable(report));
        QVERIFY2(!report.contains(QDir::homePath()), qPrintable(report));
        QVERIFY2(!report.contains(QSysInfo::machineHostName()), qPrintable(report));
        QVERIFY2(!report.contains(qEnvironmentVariable("DISPLAY")), qPrintable(report));
    }

    void aServiceThatIsNotRunningIsNotStarted() {
        const QTemporaryDir folder;
        const QString started = folder.filePath(QStringLiteral("started"));
        const QString address =
            QStringLiteral("unix:path=") + folder.filePath(QStringLiteral("bus"));
        for (const char* const name : {"org.freedesktop.secrets", "org.kde.StatusNotifierWatcher",
                                       "org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver"}) {
            const QString service = QString::fromLatin1(name);
            QVERIFY(writeFile(folder.filePath(service + QStringLiteral(".service")),
                              QStringLiteral("[D-BUS Service]\nName=%1\nExec=/bin/touch %2\n")
                                  .arg(service, started)
                                  .toUtf8()));
        }
        const QString configuration = folder.filePath(QStringLiteral("bus.conf"));
        QVERIFY(writeFile(configuration,
                          QStringLiteral("<busconfig><type>session</type><listen>%1</listen>"
                                         "<servicedir>%2</servicedir><policy context=\"default\">"
                                         "<allow own=\"*\"/><allow send_destination=\"*\"/>"
                                         "<allow receive_sender=\"*\"/></policy></busconfig>")
                              .arg(address, folder.path())
                              .toUtf8()));
        QProcess bus;
        bus.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                   QStringLiteral("--config-file"), configuration});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(folder.filePath(QStringLiteral("bus"))), kPatience);
        const QStringList lines = diagnose({{QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address}});
        bus.kill();
        bus.waitForFinished();
        compareLine(lines, "Secret service: not running, started when it is needed");
        compareLine(lines, "StatusNotifier tray: not running");
        QVERIFY(!QFile::exists(started));
    }

    void busesThatDoNotAnswer() {
        const StubBus session(StubBus::Kind::Silent);
        const StubBus system(StubBus::Kind::Mute);
        const QStringList lines =
            diagnose({{QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), session.address()},
                      {QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), system.address()}});
        compareLine(lines, "Secret service: no bus that answers");
        compareLine(lines, "Suspend, logind: no bus that answers");
    }

    void thereIsNoDisplayServer_data() {
        QTest::addColumn<QString>("display");
        QTest::addColumn<QString>("line");
        QTest::newRow("not named") << QString() << QStringLiteral("X11: DISPLAY is not set");
        QTest::newRow("gone") << QStringLiteral(":4711")
                              << QStringLiteral("X11: DISPLAY is set, but not connected");
    }
    void thereIsNoDisplayServer() {
        QFETCH(const QString, display);
        QFETCH(const QString, line);
        const QStringList lines = diagnose(
            {{QStringLiteral("DISPLAY"), display}, {QStringLiteral("QT_QPA_PLATFORM"), QString()}});
        QVERIFY2(lines.contains(line), qPrintable(lines.join(u'\n')));
        compareLine(lines, "Screen: unknown");
        compareLine(lines, "Brimlet: 0.1.0");
    }

    void theRunningProgramIsLeftAlone() {
        const QTemporaryDir runtime;
        const EnvironmentChanges ownRuntime{{QStringLiteral("XDG_RUNTIME_DIR"), runtime.path()}};
        QProcess program;
        program.setProcessEnvironment(changed(ownRuntime));
        program.start(programPath(u"brimlet"), {QStringLiteral("--autostart")});
        const QString lock = runtime.filePath(QStringLiteral("app.brimlet.host.lock"));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(lock), kPatience);
        compareLine(diagnose(ownRuntime), "Brimlet: 0.1.0");
        QCOMPARE(program.state(), QProcess::Running);
        QVERIFY(!m_x.shownWindow(program.processId(), QStringLiteral("Brimlet panel")));
        program.kill();
        program.waitForFinished();
        // Nor does it leave a trace of having run.
        QVERIFY(QFile::remove(lock));
        compareLine(diagnose(ownRuntime), "Brimlet: 0.1.0");
        QVERIFY(!QFile::exists(lock));
    }

    void anAppleLaptopsNotchIsMeasured() {
        KernelFolder kernel;
        QVERIFY(kernel.setCompatible(QByteArray("apple,j314s\0apple,t6000\0", 24)));
        QVERIFY(writeFile(kernel.path() + QStringLiteral("/sys/class/drm/card0-eDP-1/modes"),
                          "3024x1964\n1512x982\n"));
        const auto text = [&kernel] {
            return diagnosisText(brimlet::diagnose(kernel.path())).split(u'\n');
        };
        compareLine(text(), "Notch: eDP-1, 184 x 32 points, from the table of models");
        compareLine(text(), "Device tree: apple,j314s apple,t6000");
        compareLine(text(), "Built-in panel: card0-eDP-1, status unknown, 3024x1964 pixels, "
                            "power unknown");
        QVERIFY(kernel.setShowNotch("0"));
        compareLine(text(), "show_notch: off");
        compareLine(text(), "Notch: none, because show_notch is off");
    }

    void aModelThatIsNotInTheTableIsDescribed() {
        KernelFolder kernel;
        QVERIFY(kernel.setCompatible(QByteArray("apple,j999\0", 11)));
        QVERIFY(kernel.setModel("Apple MacBook Air (13-inch, M9, 2031)"));
        QVERIFY(kernel.setPanel(290, 189, 64));
        QVERIFY(writeFile(kernel.path() + QStringLiteral("/sys/class/drm/card0-eDP-1/modes"),
                          "2560x1664\n"));
        QVERIFY(kernel.setShowNotch("1"));
        const QStringList lines = diagnosisText(brimlet::diagnose(kernel.path())).split(u'\n');
        compareLine(lines, "Screen: eDP-1, 1512 x 982 points at 0,0, scale 1, ratio 1.5397, "
                           "built in");
        compareLine(lines, "Built-in panel: card0-eDP-1, status unknown, 2560x1664 pixels, power "
                           "unknown");
        compareLine(lines, "Model: Apple MacBook Air (13-inch, M9, 2031)");
        compareLine(lines, "Device tree: apple,j999");
        compareLine(lines, "Panel in the device tree: 290 x 189 mm, band of 64 pixels");
        compareLine(lines, "show_notch: on");
        compareLine(lines, "Notch: none, because the model is not in the table");
    }
};

BRIMLET_TEST(TestDiagnose, QGuiApplication)
#include "tst_diagnose.moc"
