#include "platform/linux/traystatusitem.h"
#include "platform/linux/x11.h"
#include "platform/linux/x11menuscreens.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"
#include "tests/platform/linux/busservice.h"
#include "tests/support/emulated.h"
#include "tests/support/pointer.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QApplication>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenu>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QWindow>

#include <csignal>

#include <unistd.h>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

/// Where the XEmbed tray of these tests shows its icons, in pixels.
constexpr QRect kBar(1212, 954, 300, 28);

const QString xembed = QStringLiteral("xembed");
const QString notifier = QStringLiteral("notifier");
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString trayName = QStringLiteral("app.brimlet.test.Tray");

[[nodiscard]] bool hasNotifier() {
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(watcherName);
}

/// A tray program of one kind, which runs for the lifetime of this.
class Tray final {
public:
    explicit Tray(const QString& kind)
        : m_kind(kind) {
        m_process.start(sourcePath(u"tests/support/session/tray-host"), {kind});
    }
    ~Tray() {
        m_process.terminate();
        if (!m_process.waitForFinished()) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;

    void freeze() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP); }
    void thaw() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT); }
    [[nodiscard]] bool isRunning() const {
        return m_kind == xembed ? x11::hasSystemTray() : hasNotifier();
    }

private:
    QString m_kind;
    QProcess m_process;
};

/// Calls the StatusNotifier tray, which calls back into this process before it replies.
[[nodiscard]] QDBusMessage ask(const char* method, const QVariantList& arguments = {}) {
    auto question = QDBusMessage::createMethodCall(trayName, QStringLiteral("/tray"), trayName,
                                                   QString::fromLatin1(method));
    question.setArguments(arguments);
    const QDBusPendingCall call = QDBusConnection::sessionBus().asyncCall(question, kPatience);
    [&call] { QTRY_VERIFY_WITH_TIMEOUT(call.isFinished(), kPatience); }();
    return call.reply();
}

[[nodiscard]] QJsonArray items() {
    const QDBusMessage reply = ask("Items");
    return QJsonDocument::fromJson(reply.arguments().value(0).toString().toUtf8()).array();
}

[[nodiscard]] QJsonObject item() {
    const QJsonArray all = items();
    return all.size() == 1 ? all.at(0).toObject() : QJsonObject();
}

} // namespace

/// The status item in trays that start and end. Qt chooses the kind of tray once per process, so
/// this program runs once for each kind, named by BRIMLET_TEST_TRAY. The steps share one item and
/// depend on their order.
class TestTrayStatusItem final : public QObject {
    Q_OBJECT

    XServer m_x;
    QString m_kind = qEnvironmentVariable("BRIMLET_TEST_TRAY", notifier);
    std::unique_ptr<TrayStatusItem> m_item;
    std::unique_ptr<Tray> m_tray;
    QList<std::optional<Rect>> m_presses;
    QList<InstanceRequest> m_requests;
    QElapsedTimer m_lastClick;

    [[nodiscard]] bool isNotifier() const { return m_kind == notifier; }
    /// The icon's frame on the root window; empty while no tray shows it.
    [[nodiscard]] QRect iconPlace() const {
        for (const ClientWindow& window : m_x.windowsOf(getpid())) {
            if (window.isViewable) {
                return window.geometry;
            }
        }
        return {};
    }
    /// Whether the tray shows the item, in its final place.
    [[nodiscard]] bool isInTray() const {
        return isNotifier() ? !item().isEmpty()
                            : kBar.contains(iconPlace()) && placeOf(m_item->place()) == iconPlace();
    }
    /// Clicks unless a press has been reported: a tray that is arranging its icons may lose clicks.
    [[nodiscard]] bool canBePressed() {
        if (m_presses.isEmpty()) {
            clickWith(QStringLiteral("1"));
        }
        return !m_presses.isEmpty();
    }
    void pressWith(const QString& button, int times = 1) {
        m_presses.clear();
        clickWith(button, times);
    }
    void clickWith(const QString& button, int times = 1) {
        if (isNotifier()) {
            moveTo(QPoint(700, 500));
            const char* const method = button == QStringLiteral("1")   ? "Activate"
                                       : button == QStringLiteral("2") ? "SecondaryActivate"
                                                                       : "ContextMenu";
            for (int i = 0; i < times; ++i) {
                QCOMPARE(ask(method, {700, 500}).type(), QDBusMessage::ReplyMessage);
            }
        } else {
            const QPoint at = iconPlace().center();
            xdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y()),
                     QStringLiteral("click"), QStringLiteral("--repeat"), QString::number(times),
                     QStringLiteral("--delay"), QStringLiteral("40"), button});
        }
    }
    [[nodiscard]] static QRect placeOf(const std::optional<Rect>& press) {
        return press ? toQt(*press, primaryGeometry()).toRect() : QRect();
    }

    void startTray(const QString& kind) {
        m_presses.clear();
        m_tray = std::make_unique<Tray>(kind);
        QTRY_VERIFY_WITH_TIMEOUT(m_tray->isRunning(), kPatience);
    }
    void endTray() {
        m_tray.reset();
        if (isNotifier()) {
            QTRY_VERIFY_WITH_TIMEOUT(!hasNotifier(), kPatience);
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(iconPlace().isEmpty(), kPatience);
        }
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session");
        QVERIFY(QDBusConnection::sessionBus().isConnected());
        m_item = std::make_unique<TrayStatusItem>();
        m_item->observePresses([this](const std::optional<Rect>& place) { m_presses << place; });
        m_item->observeMenu([this](InstanceRequest request) { m_requests << request; });
        m_item->setToolTip(QStringLiteral("Before the tray"));
    }

    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void withoutATrayItIsNotShown() {
        settle(QDBusConnection::sessionBus());
        QCoreApplication::sendPostedEvents();
        QVERIFY(!m_item->isShown());
        QVERIFY(!m_item->place());
        QVERIFY(iconPlace().isEmpty());
    }

    void aTrayThatComesLateShowsIt() {
        startTray(m_kind);
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isShown(), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(isInTray(), kPatience);
    }

    void itsPlaceIsKnownWhereTheTrayReportsIt() {
        if (isNotifier()) {
            QVERIFY(!m_item->place());
            return;
        }
        QCOMPARE(placeOf(m_item->place()), iconPlace());
        QVERIFY(kBar.contains(iconPlace()));
    }

    void eachClickIsOnePressWithItsPlace_data() {
        QTest::addColumn<QString>("button");
        QTest::newRow("left") << QStringLiteral("1");
        QTest::newRow("middle") << QStringLiteral("2");
        if (isNotifier()) {
            // Only trays that cannot show the menu report this click.
            QTest::newRow("right") << QStringLiteral("3");
        }
    }
    void eachClickIsOnePressWithItsPlace() {
        QFETCH(QString, button);
        for (int click = 0; click < 2; ++click) {
            pressWith(button);
            QTRY_COMPARE_WITH_TIMEOUT(m_presses.size(), 1, kPatience);
            QCOMPARE(placeOf(m_presses.constFirst()),
                     isNotifier() ? QRect(700, 500, 1, 1) : iconPlace());
            // Wait, so that the next click does not make it a double click.
            m_lastClick.start();
            const int apart = isNotifier() ? 0 : QApplication::doubleClickInterval();
            QTRY_VERIFY_WITH_TIMEOUT(m_lastClick.hasExpired(apart), kPatience);
            QCOMPARE(m_presses.size(), 1);
        }
    }

    void aDoubleClickIsOnePress() {
        if (isNotifier()) {
            QSKIP("StatusNotifier trays report a double click as two clicks");
        }
        pressWith(QStringLiteral("1"), 2);
        QTRY_COMPARE_WITH_TIMEOUT(m_presses.size(), 1, kPatience);
        m_lastClick.start();
        QTRY_VERIFY_WITH_TIMEOUT(m_lastClick.hasExpired(QApplication::doubleClickInterval()),
                                 kPatience);
        QCOMPARE(m_presses.size(), 1);
    }

    void aRightClickShowsTheMenu() {
        if (isNotifier()) {
            QSKIP("StatusNotifier trays show the menu themselves");
        }
        pressWith(QStringLiteral("3"));
        QTRY_VERIFY_WITH_TIMEOUT(QApplication::activePopupWidget() != nullptr, kPatience);
        const auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 4);
        QTRY_VERIFY_WITH_TIMEOUT(menu->windowHandle()->isExposed(), kPatience);
        m_requests.clear();
        key("Down");
        key("Return");
        QTRY_COMPARE_WITH_TIMEOUT(m_requests, QList{InstanceRequest::Open}, kPatience);
        QVERIFY(m_presses.isEmpty());
    }

    void theTrayShowsTheMenuAndReportsTheChoice_data() {
        QTest::addColumn<QString>("label");
        QTest::addColumn<InstanceRequest>("request");
        QTest::newRow("open") << QStringLiteral("Open") << InstanceRequest::Open;
        QTest::newRow("pause") << QStringLiteral("Pause ads 24h") << InstanceRequest::Pause;
        QTest::newRow("quit") << QStringLiteral("Quit") << InstanceRequest::Quit;
    }
    void theTrayShowsTheMenuAndReportsTheChoice() {
        if (!isNotifier()) {
            QSKIP("in XEmbed trays this process shows the menu itself");
        }
        QFETCH(QString, label);
        QFETCH(InstanceRequest, request);
        const QDBusMessage menu = ask("Menu");
        QCOMPARE(menu.arguments().value(0).toString(),
                 QStringLiteral("Open\nPause ads 24h\n-\nQuit"));
        m_requests.clear();
        m_presses.clear();
        QCOMPARE(ask("Choose", {label}).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE_WITH_TIMEOUT(m_requests, QList{request}, kPatience);
        QVERIFY(m_presses.isEmpty());
    }

    void onWaylandTheTraysPositionCountsIfABarIsThere() {
        if (!isNotifier()) {
            QSKIP("there are no XEmbed trays under Wayland");
        }
        QVERIFY(qputenv("WAYLAND_DISPLAY", "wayland-0"));
        const auto restore = qScopeGuard([] { qunsetenv("WAYLAND_DISPLAY"); });
        pressWith(QStringLiteral("1")); // at a place without a bar
        QTRY_COMPARE_WITH_TIMEOUT(m_presses.size(), 1, kPatience);
        QVERIFY(!m_presses.constFirst());
        {
            const Tray bar(xembed); // reserves the lower edge
            QTRY_VERIFY_WITH_TIMEOUT(isOnBar(kBar.center(), x11MenuScreens()), kPatience);
            m_presses.clear();
            const QPoint at = kBar.center();
            QCOMPARE(ask("Activate", {at.x(), at.y()}).type(), QDBusMessage::ReplyMessage);
            QTRY_COMPARE_WITH_TIMEOUT(m_presses.size(), 1, kPatience);
            QCOMPARE(placeOf(m_presses.constFirst()), QRect(at, QSize(1, 1)));
            // A second start opens the panel there.
            QCOMPARE(placeOf(m_item->place()), QRect(at, QSize(1, 1)));
        }
        QTRY_VERIFY_WITH_TIMEOUT(!isOnBar(kBar.center(), x11MenuScreens()), kPatience);
        QVERIFY(!m_item->place());
    }

    void theTokenOfAClickIsUsedUp() {
        if (!isNotifier()) {
            QSKIP("only StatusNotifier trays give one");
        }
        QCOMPARE(ask("ProvideXdgActivationToken", {QStringLiteral("of-the-click")}).type(),
                 QDBusMessage::ReplyMessage);
        QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("of-the-click")); // Qt leaves it there
        pressWith(QStringLiteral("1"));
        QTRY_COMPARE_WITH_TIMEOUT(m_presses.size(), 1, kPatience);
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN")); // no browser inherits it
    }

    void theTrayKnowsItsToolTip() {
        if (!isNotifier()) {
            QSKIP("in XEmbed trays this process shows the tooltip itself");
        }
        QCOMPARE(item().value(QStringLiteral("ToolTipTitle")).toString(),
                 QStringLiteral("Before the tray"));
        m_item->setToolTip(QStringLiteral("Open · <b>plain</b>"));
        QTRY_COMPARE_WITH_TIMEOUT(item().value(QStringLiteral("ToolTipTitle")).toString(),
                                  QStringLiteral("Open · <b>plain</b>"), kPatience);
    }

    void itIsAPictureUnderTheProgramsName() {
        if (isNotifier()) {
            const QJsonObject itsItem = item();
            // Trays show the title in lists and to screen readers.
            QCOMPARE(itsItem.value(QStringLiteral("Title")).toString(),
                     QCoreApplication::applicationName());
            QCOMPARE(itsItem.value(QStringLiteral("Id")).toString(),
                     QCoreApplication::applicationName());
            QVERIFY(!itsItem.value(QStringLiteral("IconPixmap")).toArray().isEmpty());
            QCOMPARE(itsItem.value(QStringLiteral("Status")).toString(), QStringLiteral("Active"));
            QCOMPARE(itsItem.value(QStringLiteral("Category")).toString(),
                     QStringLiteral("ApplicationStatus"));
            QCOMPARE(itsItem.value(QStringLiteral("ItemIsMenu")).toBool(), false);
            QVERIFY(itsItem.value(QStringLiteral("Menu")).toString() !=
                    QStringLiteral("/NO_DBUSMENU"));
            const QTemporaryDir folder;
            const QString file = folder.filePath(QStringLiteral("icon.png"));
            QCOMPARE(ask("SaveIcon", {file}).type(), QDBusMessage::ReplyMessage);
            const QImage icon(file);
            QVERIFY(icon.width() >= 22);
            QVERIFY(icon.pixelColor(icon.width() / 2, icon.height() * 13 / 16).lightness() > 200);
            return;
        }
        const QImage shown = m_x.picture(iconPlace());
        int bright = 0;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                bright += shown.pixelColor(x, y).lightness() > 200 ? 1 : 0;
            }
        }
        QVERIFY2(bright >= shown.width() * shown.height() / 8, QByteArray::number(bright));
    }

    void aTrayThatComesBackShowsItAgain() {
        for (int times = 0; times < 2; ++times) {
            endTray();
            startTray(m_kind);
            QTRY_VERIFY_WITH_TIMEOUT(isInTray(), kPatience);
            QTRY_VERIFY_WITH_TIMEOUT(canBePressed(), kPatience);
        }
        if (isNotifier()) {
            QCOMPARE(item().value(QStringLiteral("ToolTipTitle")).toString(),
                     QStringLiteral("Open · <b>plain</b>"));
        }
    }

    void aTrayOfTheOtherKindDoesNotPreventItsReturn() {
        endTray();
        startTray(isNotifier() ? xembed : notifier);
        QVERIFY(!m_item->place()); // Qt keeps the kind it has chosen
        m_tray.reset();
        startTray(m_kind);
        QTRY_VERIFY_WITH_TIMEOUT(isInTray(), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(canBePressed(), kPatience);
    }

    void untilATrayHasTakenItItsPlaceIsUnknown() {
        if (isNotifier()) {
            QSKIP("StatusNotifier trays never report the place");
        }
        m_item.reset();
        endTray();
        startTray(m_kind);
        m_tray->freeze();
        m_item = std::make_unique<TrayStatusItem>();
        int changes = 0;
        m_item->observePlace([&changes] { ++changes; });
        QTRY_VERIFY_WITH_TIMEOUT(m_item->isShown(), kPatience);
        QCoreApplication::processEvents();
        QVERIFY(!m_item->place());
        m_tray->thaw();
        QTRY_VERIFY_WITH_TIMEOUT(isInTray(), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(changes > 0, kPatience);
    }

    void cleanupTestCase() {
        m_item.reset();
        m_tray.reset();
    }
};

BRIMLET_TEST(TestTrayStatusItem, QApplication)
#include "tst_traystatusitem.moc"
