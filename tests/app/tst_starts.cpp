#include "tests/support/emulated.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QTest>

#include <csignal>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

/// A process that ends with this.
class Process final {
public:
    Process(const QString& program, const QStringList& arguments,
            const QProcessEnvironment& environment) {
        m_process.setProcessEnvironment(environment);
        m_process.start(program, arguments);
        m_process.waitForStarted();
    }
    ~Process() {
        m_process.kill();
        m_process.waitForFinished();
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    [[nodiscard]] qint64 pid() const { return m_process.processId(); }

private:
    QProcess m_process;
};

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

/// One start of the installed program.
struct Start final {
    qint64 pid = 0;
    QString options;
};

/// An installation under a prefix of its own, with a session bus that starts its services as those
/// of desktops do, and with a record of each start of its program.
class Installation final {
public:
    Installation() {
        QProcess install;
        install.start(QStringLiteral("cmake"), {QStringLiteral("--install"), buildPath(),
                                                QStringLiteral("--prefix"), prefix()});
        if (!install.waitForFinished() || install.exitCode() != 0) {
            qFatal("the program cannot be installed: %s",
                   install.readAllStandardError().constData());
        }
        const QString program = prefix() + QStringLiteral("/bin/brimlet");
        QFile::rename(program, program + QStringLiteral(".real"));
        writeFile(program, "#!/bin/sh\necho $$ \"$@\" >>\"$0.starts\"\nexec \"$0.real\" \"$@\"\n");
        QFile::setPermissions(program, QFileDevice::ReadOwner | QFileDevice::ExeOwner);

        const QString address =
            QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("bus"));
        writeFile(m_folder.filePath(QStringLiteral("bus.conf")),
                  QStringLiteral("<busconfig><type>session</type><listen>%1</listen>"
                                 "<servicedir>%2/share/dbus-1/services</servicedir>"
                                 "<policy context=\"default\"><allow own=\"*\"/>"
                                 "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                                 "</policy></busconfig>")
                      .arg(address, prefix())
                      .toUtf8());
        environment.insert(QStringLiteral("PATH"), prefix() + QStringLiteral("/bin:") +
                                                       environment.value(QStringLiteral("PATH")));
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
        m_bus.emplace(QStringLiteral("dbus-daemon"),
                      QStringList{QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                                  QStringLiteral("--config-file"),
                                  m_folder.filePath(QStringLiteral("bus.conf"))},
                      environment);
        [this] {
            QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_folder.filePath(QStringLiteral("bus"))),
                                     kPatience);
        }();
    }
    ~Installation() {
        for (const Start& start : starts()) {
            ::kill(static_cast<pid_t>(start.pid), SIGKILL);
        }
    }
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

    /// As a desktop does it for a click on the menu entry.
    void launchEntry() const {
        run(QStringLiteral("gio"), {QStringLiteral("launch"), entry()}, environment);
    }
    /// As a desktop does it at the start of a session.
    void launchAutostartEntry() const {
        run(QStringLiteral("gio"),
            {QStringLiteral("launch"),
             prefix() + QStringLiteral("/etc/xdg/autostart/app.brimlet.host.desktop")},
            environment);
    }
    /// As a desktop does it for a click on the entry's action.
    void launchAction(const QString& name) const {
        run(QStringLiteral("/usr/bin/python3"),
            {QStringLiteral("-c"),
             QStringLiteral("import sys\n"
                            "from gi.repository import Gio\n"
                            "entry = Gio.DesktopAppInfo.new_from_filename(sys.argv[1])\n"
                            "entry.launch_action(sys.argv[2], None)\n"
                            "Gio.bus_get_sync(Gio.BusType.SESSION).flush_sync()\n"),
             entry(), name},
            environment);
    }
    [[nodiscard]] QList<Start> starts() const {
        QFile file(prefix() + QStringLiteral("/bin/brimlet.starts"));
        QList<Start> starts;
        if (file.open(QIODevice::ReadOnly)) {
            for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
                if (!line.isEmpty()) {
                    starts << Start{line.section(u' ', 0, 0).toLongLong(), line.section(u' ', 1)};
                }
            }
        }
        return starts;
    }
    /// Whether the process of the n-th start runs.
    [[nodiscard]] bool isRunning(qsizetype n) const {
        return ::kill(static_cast<pid_t>(starts().value(n).pid), 0) == 0;
    }

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

private:
    static void run(const QString& program, const QStringList& arguments,
                    const QProcessEnvironment& environment) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(program, arguments);
        QVERIFY(process.waitForFinished(kPatience));
        QCOMPARE(process.exitCode(), 0);
    }
    [[nodiscard]] static QString buildPath() {
        return QFileInfo(programPath(u"brimlet")).dir().filePath(QStringLiteral(".."));
    }
    [[nodiscard]] QString prefix() const { return m_folder.filePath(QStringLiteral("prefix")); }
    [[nodiscard]] QString entry() const {
        return prefix() + QStringLiteral("/share/applications/app.brimlet.host.desktop");
    }

    QTemporaryDir m_folder;
    QTemporaryDir m_runtime;
    std::optional<Process> m_bus;
};

} // namespace

/// The installed program as desktops start it: by hand, with the session, and by the actions of its
/// entry. The session has no tray of its own.
class TestStarts final : public QObject {
    Q_OBJECT

    XServer m_x;

    [[nodiscard]] bool hasPanel(qint64 pid) const {
        return m_x.shownWindow(pid, QStringLiteral("Brimlet panel")).has_value();
    }
    [[nodiscard]] bool hasIcon(qint64 pid) const {
        const auto windows = m_x.windowsOf(pid);
        return std::any_of(windows.begin(), windows.end(), [](const ClientWindow& window) {
            return window.isViewable && window.geometry.size() == QSize(22, 22);
        });
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void theMenuEntryOpensThePanel_data() {
        QTest::addColumn<bool>("hasTray");
        QTest::newRow("with a tray") << true;
        QTest::newRow("without a tray") << false;
    }
    void theMenuEntryOpensThePanel() {
        QFETCH(bool, hasTray);
        const Installation installed;
        std::optional<Process> tray;
        if (hasTray) {
            tray.emplace(sourcePath(u"tests/support/session/tray-host"),
                         QStringList{QStringLiteral("xembed")}, installed.environment);
        }
        installed.launchEntry();
        QTRY_VERIFY_WITH_TIMEOUT(hasPanel(installed.starts().value(0).pid), kPatience);
        // Again, while it runs.
        installed.launchEntry();
        QTRY_VERIFY_WITH_TIMEOUT(installed.starts().size() == 2 && !installed.isRunning(1),
                                 kPatience);
        QVERIFY(hasPanel(installed.starts().value(0).pid));
    }

    void aSessionsStartOpensNoPanel_data() {
        QTest::addColumn<bool>("isTrayLate");
        QTest::newRow("without a tray") << false;
        QTest::newRow("with a late tray") << true;
    }
    void aSessionsStartOpensNoPanel() {
        QFETCH(bool, isTrayLate);
        const Installation installed;
        installed.launchAutostartEntry();
        QTRY_COMPARE_WITH_TIMEOUT(installed.starts().size(), 1, kPatience);
        const qint64 pid = installed.starts().constFirst().pid;
        // A desktop may start it twice, which opens no panel either.
        QTRY_VERIFY_WITH_TIMEOUT(
            QFile::exists(installed.environment.value(QStringLiteral("XDG_RUNTIME_DIR")) +
                          QStringLiteral("/app.brimlet.host.lock")),
            kPatience);
        installed.launchAutostartEntry();
        QTRY_COMPARE_WITH_TIMEOUT(installed.starts().size(), 2, kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(!installed.isRunning(1), kPatience);
        // One that is started by hand later opens its panel, since there is no tray.
        QProcessEnvironment other = installed.environment;
        const QTemporaryDir runtime;
        other.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
        other.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                     QStringLiteral("unix:path=/nowhere/bus"));
        const Process byHand(programPath(u"brimlet"), {}, other);
        QTRY_VERIFY_WITH_TIMEOUT(hasPanel(byHand.pid()), kPatience);
        QVERIFY(!hasPanel(pid));
        if (isTrayLate) {
            const Process tray(sourcePath(u"tests/support/session/tray-host"),
                               {QStringLiteral("xembed")}, installed.environment);
            QTRY_VERIFY_WITH_TIMEOUT(hasIcon(pid), kPatience);
            QVERIFY(!hasPanel(pid));
        }
        QVERIFY(installed.isRunning(0));
        // It is there all the same.
        installed.launchEntry();
        QTRY_VERIFY_WITH_TIMEOUT(hasPanel(pid), kPatience);
    }

    void anActionStartsNothing_data() {
        QTest::addColumn<QString>("action");
        QTest::newRow("pause") << QStringLiteral("pause");
        QTest::newRow("quit") << QStringLiteral("quit");
    }
    void anActionStartsNothing() {
        QFETCH(QString, action);
        const Installation installed;
        installed.launchAction(action);
        QTRY_COMPARE_WITH_TIMEOUT(installed.starts().size(), 1, kPatience);
        // A process that only asks the running one, of which there is none.
        QCOMPARE(installed.starts().constFirst().options, QStringLiteral("--") + action);
        QTRY_VERIFY_WITH_TIMEOUT(!installed.isRunning(0), kPatience);
    }

    void anActionReachesTheRunningProgram() {
        const Installation installed;
        installed.launchEntry();
        QTRY_VERIFY_WITH_TIMEOUT(hasPanel(installed.starts().value(0).pid), kPatience);
        installed.launchAction(QStringLiteral("pause"));
        QTRY_VERIFY_WITH_TIMEOUT(installed.starts().size() == 2 && !installed.isRunning(1),
                                 kPatience);
        QVERIFY(installed.isRunning(0));
        installed.launchAction(QStringLiteral("quit"));
        QTRY_VERIFY_WITH_TIMEOUT(!installed.isRunning(0), kPatience);
    }
};

BRIMLET_TEST(TestStarts, QCoreApplication)
#include "tst_starts.moc"
