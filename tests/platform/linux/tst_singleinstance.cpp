#include "tests/support/emulated.h"
#include "tests/support/pointer.h"
#include "tests/support/rootmessages.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <csignal>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

const QString busName = QStringLiteral("app.brimlet.host");
const QString lockName = QStringLiteral("app.brimlet.host.lock");
const QString notRunning = QStringLiteral("brimlet: Brimlet is not running.\n");

/// A process of the program. Killed by the destructor if it still runs.
class Start final {
public:
    explicit Start(const QProcessEnvironment& environment, const QStringList& arguments = {}) {
        m_process.setProcessEnvironment(environment);
        m_process.start(programPath(u"brimlet"), arguments);
        m_process.waitForStarted();
    }
    ~Start() {
        m_process.kill();
        m_process.waitForFinished();
    }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;

    [[nodiscard]] qint64 pid() const { return m_process.processId(); }
    [[nodiscard]] bool isRunning() {
        return !m_process.waitForFinished(0) && m_process.state() == QProcess::Running;
    }
    void signal(int number) const { ::kill(static_cast<pid_t>(pid()), number); }
    /// -1 when it crashed or did not end in time.
    [[nodiscard]] int exitCode(int patience = kPatience) {
        const bool isOver =
            m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patience);
        return isOver && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    [[nodiscard]] bool ends(int patience) {
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patience);
    }
    [[nodiscard]] QString complaints() {
        return QString::fromUtf8(m_process.readAllStandardError());
    }

private:
    QProcess m_process;
};

} // namespace

/// The program itself, started several times in one desktop session. The session's tray is an
/// XEmbed one, which needs no bus, so no panel opens by itself.
class TestSingleInstance final : public QObject {
    Q_OBJECT

    XServer m_x;
    std::unique_ptr<QTemporaryDir> m_runtime;
    QProcessEnvironment m_environment;

    static void withAndWithoutABus() {
        QTest::addColumn<bool>("hasBus");
        QTest::newRow("with a bus") << true;
        QTest::newRow("without a bus") << false;
    }
    void useBus(bool isUsed) {
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime->path());
        if (!isUsed) {
            m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                                 QStringLiteral("unix:path=/nowhere/bus"));
        }
    }
    [[nodiscard]] QString lockFile() const { return m_runtime->filePath(lockName); }

    /// It shows its status item, so its main loop runs.
    [[nodiscard]] bool isUp(const Start& start) const {
        const auto windows = m_x.windowsOf(start.pid());
        return std::any_of(windows.begin(), windows.end(),
                           [](const ClientWindow& window) { return window.isViewable; });
    }
    [[nodiscard]] std::optional<xcb_window_t> panel(const Start& start) const {
        for (const ClientWindow& window : m_x.windowsOf(start.pid())) {
            if (window.title == QStringLiteral("Brimlet panel") && window.isViewable) {
                return window.id;
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] bool hasPanelWithKeyboard(const Start& start) const {
        const auto window = panel(start);
        return window && m_x.focus() == *window;
    }
    [[nodiscard]] static bool isNameOwned() {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(busName);
    }
    [[nodiscard]] static QDBusMessage call(const QString& method, const QVariantList& arguments) {
        auto message =
            QDBusMessage::createMethodCall(busName, QStringLiteral("/app/brimlet/host"),
                                           QStringLiteral("org.freedesktop.Application"), method);
        message.setArguments(arguments);
        return QDBusConnection::sessionBus().call(message, QDBus::Block, kPatience);
    }
    [[nodiscard]] static QDBusMessage callAction(const QString& name) {
        return call(QStringLiteral("ActivateAction"), {name, QVariantList(), QVariantMap()});
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void init() {
        m_runtime = std::make_unique<QTemporaryDir>();
        useBus(true);
        // The program of the test before has ended.
        QTRY_VERIFY_WITH_TIMEOUT(!isNameOwned(), kPatience);
    }

    void aSecondStartOpensThePanelOfTheFirst_data() { withAndWithoutABus(); }
    void aSecondStartOpensThePanelOfTheFirst() {
        QFETCH(bool, hasBus);
        useBus(hasBus);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        QVERIFY(!panel(first));
        Start second(m_environment);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(second.complaints(), QString());
        QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(first), kPatience);
        // And again when it has been closed.
        key("Escape");
        QTRY_VERIFY_WITH_TIMEOUT(!panel(first), kPatience);
        Start third(m_environment);
        QCOMPARE(third.exitCode(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(first), kPatience);
        QVERIFY(first.isRunning());
    }

    void startsFindEachOtherIfOnlyOneHasABus_data() {
        QTest::addColumn<bool>("hasFirstABus");
        QTest::newRow("the first has one") << true;
        QTest::newRow("all but the first have one") << false;
    }
    void startsFindEachOtherIfOnlyOneHasABus() {
        QFETCH(bool, hasFirstABus);
        useBus(hasFirstABus);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        useBus(!hasFirstABus);
        Start second(m_environment);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(second.complaints(), QString());
        QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(first), kPatience);
        for (const auto* const option : {"--pause", "--quit"}) {
            Start asking(m_environment, {QString::fromLatin1(option)});
            QCOMPARE(asking.exitCode(), 0);
            QCOMPARE(asking.complaints(), QString());
        }
        QCOMPARE(first.exitCode(), 0);
        QCOMPARE(first.complaints(), QString());
    }

    void aSignalOpensThePanelToo_data() { withAndWithoutABus(); }
    void aSignalOpensThePanelToo() {
        QFETCH(bool, hasBus);
        useBus(hasBus);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        first.signal(SIGUSR1);
        QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(first), kPatience);
    }

    void theRunningProgramCanBeAskedToPauseAndToQuit_data() { withAndWithoutABus(); }
    void theRunningProgramCanBeAskedToPauseAndToQuit() {
        QFETCH(bool, hasBus);
        useBus(hasBus);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        Start pause(m_environment, {QStringLiteral("--pause")});
        QCOMPARE(pause.exitCode(), 0);
        QCOMPARE(pause.complaints(), QString());
        Start quit(m_environment, {QStringLiteral("--quit")});
        QCOMPARE(quit.exitCode(), 0);
        QCOMPARE(quit.complaints(), QString());
        QCOMPARE(first.exitCode(), 0);
        QCOMPARE(first.complaints(), QString());
    }

    void withNoneRunningARequestFails_data() {
        QTest::addColumn<bool>("hasBus");
        QTest::addColumn<QString>("option");
        for (const bool hasBus : {true, false}) {
            for (const auto* const option : {"--pause", "--quit"}) {
                QTest::addRow("%s %s", option, hasBus ? "with a bus" : "without a bus")
                    << hasBus << QString::fromLatin1(option);
            }
        }
    }
    void withNoneRunningARequestFails() {
        QFETCH(bool, hasBus);
        QFETCH(QString, option);
        useBus(hasBus);
        m_environment.remove(QStringLiteral("DISPLAY")); // it needs none
        Start asking(m_environment, {option});
        QCOMPARE(asking.exitCode(), 1);
        QCOMPARE(asking.complaints(), notRunning);
        QVERIFY(!QFileInfo::exists(lockFile()));
    }

    void aProgramThatWasKilledLeavesNothingInTheWay_data() { withAndWithoutABus(); }
    void aProgramThatWasKilledLeavesNothingInTheWay() {
        QFETCH(bool, hasBus);
        useBus(hasBus);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        first.signal(SIGKILL);
        QVERIFY(first.ends(kPatience));
        QVERIFY(QFileInfo::exists(lockFile()));
        Start asking(m_environment, {QStringLiteral("--quit")});
        QCOMPARE(asking.exitCode(), 1);
        Start second(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(second), kPatience);
        QVERIFY(!panel(second));
    }

    void ofTenStartsAtOnceOneStays_data() {
        QTest::addColumn<bool>("hasEvenABus");
        QTest::addColumn<bool>("hasOddABus");
        QTest::newRow("with a bus") << true << true;
        QTest::newRow("without a bus") << false << false;
        QTest::newRow("every second one with a bus") << true << false;
    }
    void ofTenStartsAtOnceOneStays() {
        QFETCH(bool, hasEvenABus);
        QFETCH(bool, hasOddABus);
        std::array<std::unique_ptr<Start>, 10> starts;
        for (std::size_t i = 0; i < starts.size(); ++i) {
            useBus(i % 2 == 0 ? hasEvenABus : hasOddABus);
            starts[i] = std::make_unique<Start>(m_environment);
        }
        const auto running = [&] {
            return std::count_if(starts.begin(), starts.end(),
                                 [](const auto& start) { return start->isRunning(); });
        };
        QTRY_COMPARE_WITH_TIMEOUT(running(), 1, 2 * kPatience);
        Start* stayed = nullptr;
        for (const auto& start : starts) {
            if (start->isRunning()) {
                stayed = start.get();
            } else {
                QCOMPARE(start->exitCode(), 0);
            }
            QCOMPARE(start->complaints(), QString());
        }
        QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(*stayed), kPatience);
        Start quit(m_environment, {QStringLiteral("--quit")});
        QCOMPARE(quit.exitCode(), 0);
        QCOMPARE(stayed->exitCode(), 0);
    }

    void theDesktopOpensItOverTheBus_data() {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::newRow("Activate") << QStringLiteral("Activate") << QVariantList{QVariantMap()};
        QTest::newRow("Activate with a start-up notice")
            << QStringLiteral("Activate")
            << QVariantList{QVariantMap{
                   {QStringLiteral("desktop-startup-id"), QStringLiteral("panel_TIME42")}}};
        QTest::newRow("Open") << QStringLiteral("Open")
                              << QVariantList{QStringList{QStringLiteral("file:///etc/passwd")},
                                              QVariantMap()};
    }
    void theDesktopOpensItOverTheBus() {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        const QDBusMessage reply = call(method, arguments);
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QCOMPARE(reply.arguments(), QVariantList());
        QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(first), kPatience);
    }

    void theDesktopsActionsAreAnsweredAndDone() {
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        for (const auto* const name : {"pause", "nonsense", "", "Quit"}) {
            QCOMPARE(callAction(QString::fromLatin1(name)).type(), QDBusMessage::ReplyMessage);
        }
        QVERIFY(!panel(first));
        QVERIFY(first.isRunning());
        QCOMPARE(callAction(QStringLiteral("quit")).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(first.exitCode(), 0);
        QCOMPARE(first.complaints(), QString());
    }

    void whatDoesNotBelongToTheInterfaceIsRefused() {
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        QCOMPARE(call(QStringLiteral("Activate"), {QStringLiteral("text")}).type(),
                 QDBusMessage::ErrorMessage);
        QCOMPARE(call(QStringLiteral("deleteLater"), {}).type(), QDBusMessage::ErrorMessage);
        QVERIFY(first.isRunning());
        QVERIFY(!panel(first));
    }

    void startsAndCallsAreReportedAsFinished() {
        RootMessages messages;
        QByteArrayList reports;
        const auto isReported = [&](const char* id) {
            reports += messages.takeStartupInfo();
            return reports.contains("remove: ID=\"" + QByteArray(id) + '"');
        };
        m_environment.insert(QStringLiteral("DESKTOP_STARTUP_ID"), QStringLiteral("first_TIME1"));
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(isReported("first_TIME1"), kPatience);
        QVERIFY(!panel(first)); // no window was needed
        m_environment.insert(QStringLiteral("DESKTOP_STARTUP_ID"), QStringLiteral("second_TIME2"));
        Start second(m_environment);
        QCOMPARE(second.exitCode(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(isReported("second_TIME2"), kPatience);
        const QVariantMap data{
            {QStringLiteral("desktop-startup-id"), QStringLiteral("third_TIME3")}};
        QCOMPARE(call(QStringLiteral("Activate"), {data}).type(), QDBusMessage::ReplyMessage);
        QTRY_VERIFY_WITH_TIMEOUT(isReported("third_TIME3"), kPatience);
        m_environment.remove(QStringLiteral("DESKTOP_STARTUP_ID"));
    }

    void theObjectHasTheDesktopsInterfaceAndNoOther() {
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        const auto call = QDBusMessage::createMethodCall(
            busName, QStringLiteral("/app/brimlet/host"),
            QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"));
        const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        const QString text = reply.arguments().constFirst().toString();
        QVERIFY2(text.contains(QStringLiteral("<interface name=\"org.freedesktop.Application\">")),
                 qPrintable(text));
        QStringList foreign;
        for (const QString& line : text.split(u'\n')) {
            if (line.contains(QStringLiteral("<interface ")) &&
                !line.contains(QStringLiteral("\"org.freedesktop."))) {
                foreign << line;
            }
        }
        QCOMPARE(foreign, QStringList());
        QCOMPARE(text.count(QStringLiteral("<method name=\"Activate")), 2);
        QCOMPARE(text.count(QStringLiteral("<method name=\"Open\"")), 1);
    }

    void oneThatHangsIsReportedAfterThreeSeconds() {
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        first.signal(SIGSTOP);
        QElapsedTimer time;
        time.start();
        Start second(m_environment);
        QCOMPARE(second.exitCode(), 1);
        const qint64 waited = time.elapsed();
        QCOMPARE(second.complaints(),
                 QStringLiteral("brimlet: Brimlet is running already but does not answer.\n"));
        QVERIFY2(waited >= 2500 && waited < 6000, QByteArray::number(waited).constData());
        // It does what it was asked once it runs again.
        first.signal(SIGCONT);
        QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(first), kPatience);
    }

    void theLockFileIsEmptyAndTheUsersOwn_data() { withAndWithoutABus(); }
    void theLockFileIsEmptyAndTheUsersOwn() {
        QFETCH(bool, hasBus);
        useBus(hasBus);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        const QFileInfo file(lockFile());
        QVERIFY(file.isFile());
        QCOMPARE(file.permissions() & QFileDevice::Permissions(0x7777),
                 QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadUser |
                     QFileDevice::WriteUser);
        QCOMPARE(file.size(), 0);
        QCOMPARE(isNameOwned(), hasBus);
    }

    void aLinkInTheLockFilesPlaceIsNotFollowed() {
        useBus(false);
        const QString target = m_runtime->filePath(QStringLiteral("precious"));
        QVERIFY(QFile::link(target, lockFile()));
        {
            Start first(m_environment);
            QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
            QVERIFY(!QFileInfo::exists(target));
        }
        // This process holds a lock on the link's target: a start that followed the link would ask
        // this process to quit.
        const int held = ::open(QFile::encodeName(target).constData(), O_RDWR | O_CREAT, 0600);
        struct flock lock {};
        lock.l_type = F_WRLCK;
        QCOMPARE(::fcntl(held, F_SETLK, &lock), 0);
        Start asking(m_environment, {QStringLiteral("--quit")});
        QCOMPARE(asking.exitCode(), 1);
        QCOMPARE(asking.complaints(), notRunning);
        ::close(held);
    }

    void withoutAFolderForTheLockFileItRuns_data() {
        QTest::addColumn<QString>("folder");
        QTest::newRow("gone") << QStringLiteral("/nowhere/at/all");
        QTest::newRow("not a folder") << QStringLiteral("/dev/null");
        QTest::newRow("nothing can be made there") << QStringLiteral("/proc");
    }
    void withoutAFolderForTheLockFileItRuns() {
        QFETCH(QString, folder);
        useBus(false);
        m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder);
        m_environment.remove(QStringLiteral("QT_FATAL_WARNINGS")); // Qt warns of such a folder
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        Start asking(m_environment, {QStringLiteral("--quit")});
        QCOMPARE(asking.exitCode(), 1);
        first.signal(SIGTERM);
        QCOMPARE(first.exitCode(), 0);
    }

    void withoutARuntimeFolderTheLockIsAmongTheCaches() {
        useBus(false);
        m_environment.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        m_environment.remove(QStringLiteral("QT_FATAL_WARNINGS")); // Qt warns of that
        const QString caches = m_runtime->filePath(QStringLiteral("not/yet/made"));
        m_environment.insert(QStringLiteral("XDG_CACHE_HOME"), caches);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        QVERIFY(QFileInfo::exists(caches + u'/' + lockName));
        Start second(m_environment);
        QCOMPARE(second.exitCode(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(first), kPatience);
        Start quit(m_environment, {QStringLiteral("--quit")});
        QCOMPARE(quit.exitCode(), 0);
        QCOMPARE(first.exitCode(), 0);
    }

    void terminationEndsItWithinASecond_data() {
        QTest::addColumn<int>("signal");
        QTest::addColumn<bool>("isPanelOpen");
        QTest::newRow("SIGTERM") << SIGTERM << false;
        QTest::newRow("SIGINT") << SIGINT << false;
        QTest::newRow("SIGTERM with the panel open") << SIGTERM << true;
        QTest::newRow("SIGINT with the panel open") << SIGINT << true;
    }
    void terminationEndsItWithinASecond() {
        QFETCH(int, signal);
        QFETCH(bool, isPanelOpen);
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isUp(first), kPatience);
        if (isPanelOpen) {
            QCOMPARE(call(QStringLiteral("Activate"), {QVariantMap()}).type(),
                     QDBusMessage::ReplyMessage);
            QTRY_VERIFY_WITH_TIMEOUT(hasPanelWithKeyboard(first), kPatience);
        }
        QElapsedTimer time;
        time.start();
        first.signal(signal);
        QCOMPARE(first.exitCode(), 0);
        qInfo("%lld ms", static_cast<long long>(time.elapsed()));
        QVERIFY2(time.elapsed() < 1000 * slowness(),
                 QByteArray::number(time.elapsed()).constData());
        QCOMPARE(first.complaints(), QString());
    }

    void terminationIsNotLostWhileItStarts() {
        for (int i = 0; i < 5; ++i) {
            Start start(m_environment);
            start.signal(SIGTERM);
            QVERIFY(start.ends(kPatience)); // perhaps by the signal itself
        }
        // It has its name before its main loop runs.
        for (int i = 0; i < 5; ++i) {
            Start start(m_environment);
            while (!isNameOwned()) {
                QVERIFY(start.isRunning());
            }
            start.signal(SIGTERM);
            QCOMPARE(start.exitCode(), 0);
        }
    }

    void itEndsWithItsXServer() {
        QProcess screen;
        screen.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"),
                                              QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                                              QStringLiteral("-noreset")});
        QTRY_VERIFY_WITH_TIMEOUT(screen.canReadLine(), kPatience);
        m_environment.insert(QStringLiteral("DISPLAY"),
                             u':' + QString::fromLatin1(screen.readLine().trimmed()));
        m_environment.remove(QStringLiteral("QT_FATAL_WARNINGS")); // Qt warns of its end
        Start first(m_environment);
        QTRY_VERIFY_WITH_TIMEOUT(isNameOwned(), kPatience);
        // It answers, so its main loop runs.
        QCOMPARE(callAction(QStringLiteral("nonsense")).type(), QDBusMessage::ReplyMessage);
        QElapsedTimer time;
        time.start();
        screen.kill();
        QVERIFY(screen.waitForFinished());
        QCOMPARE(first.exitCode(), 1);
        qInfo("%lld ms", static_cast<long long>(time.elapsed()));
        QVERIFY2(time.elapsed() < 1000 * slowness(),
                 QByteArray::number(time.elapsed()).constData());
    }

    void withoutAnXServerItSaysSo_data() {
        QTest::addColumn<QString>("display");
        QTest::newRow("none named") << QString();
        QTest::newRow("none there") << QStringLiteral(":9999");
        QTest::newRow("nonsense") << QStringLiteral("screen");
    }
    void withoutAnXServerItSaysSo() {
        QFETCH(QString, display);
        if (display.isEmpty()) {
            m_environment.remove(QStringLiteral("DISPLAY"));
        } else {
            m_environment.insert(QStringLiteral("DISPLAY"), display);
        }
        m_environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        Start start(m_environment);
        QCOMPARE(start.exitCode(), 1);
        QCOMPARE(start.complaints(),
                 QStringLiteral("brimlet: There is no X server at DISPLAY=%1 and no Wayland "
                                "compositor with a layer shell. Start it from a desktop; in GNOME "
                                "that needs XWayland.\n")
                     .arg(display));
    }
};

BRIMLET_TEST(TestSingleInstance, QCoreApplication)
#include "tst_singleinstance.moc"
