#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>
#include <QScopeGuard>
#include <QTest>

#include <csignal>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

int scale() {
    return qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
}

void xrandr(const QStringList& arguments) {
    QCOMPARE(QProcess::execute(QStringLiteral("xrandr"), arguments), 0);
}

/// A tray program, stopped and continued by a test. It ends with this.
class Tray final {
public:
    explicit Tray(const QStringList& kind) {
        m_process.start(sourcePath(u"tests/support/session/tray-host"), kind);
        m_process.waitForStarted();
    }
    ~Tray() {
        m_process.kill(); // also while it is stopped
        m_process.waitForFinished();
    }
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;

    void signal(int number) const { ::kill(static_cast<pid_t>(m_process.processId()), number); }

private:
    QProcess m_process;
};

} // namespace

/// Where the panel opens, beside real trays. The session has none of its own.
class TestPanelPlace final : public QObject {
    Q_OBJECT

    XServer m_x;

    /// The panel's frame in points; null while it is not shown.
    [[nodiscard]] QRect panelOf(const SimulatorProcess& program) const {
        const auto panel = m_x.shownWindow(program.pid(), QStringLiteral("Brimlet panel"));
        return panel ? inPoints(panel->geometry) : QRect();
    }
    /// The icon's frame in points; null while no tray shows it.
    [[nodiscard]] QRect iconOf(const SimulatorProcess& program) const {
        for (const ClientWindow& window : m_x.windowsOf(program.pid())) {
            if (window.isViewable && window.geometry.size() == QSize(22, 22) * scale()) {
                return inPoints(window.geometry);
            }
        }
        return {};
    }
    [[nodiscard]] static QRect inPoints(const QRect& pixels) {
        return {pixels.topLeft() / scale(), pixels.size() / scale()};
    }
    [[nodiscard]] QRect workArea() const { return inPoints(m_x.workArea()); }
    /// Waits for the notifier tray, which the program prefers. Otherwise it may take the other one.
    static void awaitNotifier() {
        QTRY_VERIFY_WITH_TIMEOUT(QDBusConnection::sessionBus().interface()->isServiceRegistered(
                                     QStringLiteral("org.kde.StatusNotifierWatcher")),
                                 kPatience);
    }
    /// Waits until the bar, as wide as the screen, has reserved its part. While monitors change,
    /// the window manager reports narrower areas for a moment.
    void awaitBar() const {
        const auto isBarReserved = [&] {
            const QRect area = workArea();
            return area.width() == kScreen.width() && area.height() < kScreen.height();
        };
        QTRY_VERIFY_WITH_TIMEOUT(isBarReserved(), kPatience);
    }

    static constexpr QRect kScreen{0, 0, 1512, 982};

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }
    void init() { QTRY_COMPARE_WITH_TIMEOUT(workArea(), kScreen, kPatience); }

    void openedBeforeTheTrayTakesTheIconItFollowsTheIcon_data() {
        QTest::addColumn<QString>("bar");
        QTest::addColumn<bool>("isAtTop");
        QTest::addColumn<bool>("isAtLeft");
        QTest::newRow("bottom right") << QStringLiteral("bottom right") << false << false;
        QTest::newRow("bottom centre") << QStringLiteral("bottom center") << false << false;
        QTest::newRow("top left") << QStringLiteral("top left") << true << true;
        QTest::newRow("top right") << QStringLiteral("top right") << true << false;
    }
    void openedBeforeTheTrayTakesTheIconItFollowsTheIcon() {
        QFETCH(QString, bar);
        QFETCH(bool, isAtTop);
        QFETCH(bool, isAtLeft);
        const Tray tray({QStringLiteral("xembed"), bar});
        awaitBar();
        tray.signal(SIGSTOP); // it takes no icon
        SimulatorProcess program({});
        (void)program.ask("open");
        QTRY_VERIFY_WITH_TIMEOUT(panelOf(program).isValid(), kPatience);
        // In the corner at the bar's edge, six points from the bar and from the screen's side.
        const QRect free = workArea().adjusted(6, 6, -6, -6);
        QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).right(), free.right(), kPatience);
        if (isAtTop) {
            QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).top(), free.top(), kPatience);
        } else {
            QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).bottom(), free.bottom(), kPatience);
        }
        QVERIFY(iconOf(program).isNull());

        tray.signal(SIGCONT);
        QTRY_VERIFY_WITH_TIMEOUT(iconOf(program).isValid(), kPatience);
        const auto isBesideIcon = [&] {
            const QRect panel = panelOf(program);
            const QRect icon = iconOf(program);
            const int x =
                qBound(free.left(), icon.center().x() - panel.width() / 2 + 1, free.right() - 319);
            return qAbs(panel.x() - x) <= 1 &&
                   (isAtTop ? panel.top() == free.top() : panel.bottom() == free.bottom());
        };
        QTRY_VERIFY_WITH_TIMEOUT(isBesideIcon(), kPatience);
        QCOMPARE(panelOf(program).left() == free.left(), isAtLeft);
        QVERIFY(program.state().value(QStringLiteral("isMenuOpen")).toBool());
        // It opens there again.
        QCOMPARE(program.startAgain(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(isBesideIcon(), kPatience);
    }

    void anOpenPanelMakesRoomForABar() {
        SimulatorProcess program({});
        (void)program.ask("open");
        QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).topRight(),
                                  kScreen.adjusted(6, 6, -6, -6).topRight(), kPatience);
        // The notifier tray takes the icon but gives it no place.
        const Tray items({QStringLiteral("notifier")});
        awaitNotifier();
        const Tray tray({QStringLiteral("xembed"), QStringLiteral("top right")});
        awaitBar();
        const QRect free = workArea().adjusted(6, 6, -6, -6);
        QVERIFY(free.top() > 6);
        QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).top(), free.top(), kPatience);
        QVERIFY(free.contains(panelOf(program)));
    }

    void besideAnotherScreenItIsInTheCornerAtTheBarToo() {
        const auto half = [](const QString& left) {
            const int width = kScreen.width() * scale() / 2;
            return QStringLiteral("%1/150x%2/196+%3+0")
                .arg(width)
                .arg(kScreen.height() * scale())
                .arg(left);
        };
        const QString middle = QString::number(kScreen.width() * scale() / 2);
        xrandr({QStringLiteral("--delmonitor"), QStringLiteral("eDP-1"),
                QStringLiteral("--setmonitor"), QStringLiteral("eDP-1"), half(QStringLiteral("0")),
                QStringLiteral("screen"), QStringLiteral("--setmonitor"), QStringLiteral("HDMI-1"),
                half(middle), QStringLiteral("none")});
        const auto restore = qScopeGuard([] {
            xrandr({QStringLiteral("--delmonitor"), QStringLiteral("HDMI-1"),
                    QStringLiteral("--delmonitor"), QStringLiteral("eDP-1"),
                    QStringLiteral("--setmonitor"), QStringLiteral("eDP-1"), QStringLiteral("auto"),
                    QStringLiteral("screen")});
        });
        const Tray items({QStringLiteral("notifier")});
        awaitNotifier();
        const Tray tray({QStringLiteral("xembed"), QStringLiteral("bottom right")});
        awaitBar();
        SimulatorProcess program({});
        (void)program.ask("open");
        const QRect free = QRect(0, 0, 756, workArea().height()).adjusted(6, 6, -6, -6);
        QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).bottomRight(), free.bottomRight(), kPatience);
    }

    void aTrayWithoutPlacesHasItInTheCornerAtTheBar_data() {
        QTest::addColumn<QString>("bar");
        QTest::newRow("bottom") << QStringLiteral("bottom right");
        QTest::newRow("top") << QStringLiteral("top left");
    }
    void aTrayWithoutPlacesHasItInTheCornerAtTheBar() {
        QFETCH(QString, bar);
        const Tray items({QStringLiteral("notifier")});
        awaitNotifier();
        const Tray tray({QStringLiteral("xembed"), bar});
        awaitBar();
        SimulatorProcess program({});
        (void)program.ask("open");
        QTRY_VERIFY_WITH_TIMEOUT(panelOf(program).isValid(), kPatience);
        const QRect free = workArea().adjusted(6, 6, -6, -6);
        QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).right(), free.right(), kPatience);
        if (bar.startsWith(u"top")) {
            QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).top(), free.top(), kPatience);
        } else {
            QTRY_COMPARE_WITH_TIMEOUT(panelOf(program).bottom(), free.bottom(), kPatience);
        }
    }
};

BRIMLET_TEST(TestPanelPlace, QCoreApplication)
#include "tst_panelplace.moc"
