#include "host/notch.h"
#include "platform/linux/qtscreens.h"
#include "platform/qt/desktopscreens.h"
#include "tests/platform/linux/kernelfolder.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QGuiApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>

using namespace brimlet;

namespace {

void xrandr(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral("xrandr"), arguments);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
}

Screen only(const QtScreens& screens) {
    const auto list = screens.list();
    return list.size() == 1 ? list.front() : Screen();
}

const QString eDP = QStringLiteral("eDP-1");
const QSize shown(1512, 982);
const QSize hidden(1512, 945);
const QSize smaller(1344, 873); // the panel's sides over 2.25

QString sides(QSize size) {
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

} // namespace

/// With a real X server whose monitors are added and removed.
class TestQtScreens final : public QObject {
    Q_OBJECT

private:
    /// Gives the only monitor that name and mode, and returns once Qt reports them.
    static void setMonitor(const QString& name, QSize mode) {
        const QString before = QGuiApplication::primaryScreen()->name();
        if (before != name) {
            xrandr({QStringLiteral("--delmonitor"), before, QStringLiteral("--setmonitor"), name,
                    QStringLiteral("auto"), QStringLiteral("screen")});
        }
        xrandr({QStringLiteral("--output"), QStringLiteral("screen"), QStringLiteral("--mode"),
                sides(mode)});
        QTRY_COMPARE(QGuiApplication::screens().size(), 1);
        QTRY_COMPARE(QGuiApplication::primaryScreen()->name(), name);
        QTRY_COMPARE(QGuiApplication::primaryScreen()->geometry(), QRect(QPoint(), mode));
    }

private Q_SLOTS:
    void initTestCase() {
        for (const QSize size : {hidden, smaller}) {
            const auto number = [](int value) { return QString::number(value); };
            // A mode line: the clock, then size and sync timings of each direction.
            QStringList mode{QStringLiteral("--newmode"), sides(size), number(75)};
            for (const int end : {size.width(), size.height()}) {
                mode << number(end) << number(end + 1) << number(end + 2) << number(end + 3);
            }
            xrandr(mode);
            xrandr({QStringLiteral("--addmode"), QStringLiteral("screen"), sides(size)});
        }
    }

    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void cleanup() { setMonitor(eDP, shown); }

    void monitorsAreAddedRemovedAndMoved() {
        QtScreens screens(QStringLiteral("/nowhere"));
        int changes = 0;
        screens.observeChanges([&changes] { ++changes; });

        // The session's only monitor has the name of a laptop's built-in panel.
        QCOMPARE(screens.list().size(), std::size_t{1});
        QCOMPARE(screens.list().at(0).frame, (Rect{0, 0, 1512, 982}));
        QCOMPARE(screens.list().at(0).number.value_or(0), 1U);
        QVERIFY(screens.isBuiltIn(1));
        QVERIFY(!screens.isBuiltIn(0));
        QVERIFY(!screens.isBuiltIn(2));
        QCOMPARE(changes, 0);

        xrandr({QStringLiteral("--setmonitor"), QStringLiteral("HDMI-1"),
                QStringLiteral("800/200x600/150+1512+100"), QStringLiteral("none")});
        QTRY_COMPARE(screens.list().size(), std::size_t{2});
        QTRY_VERIFY(changes > 0);
        // 100 pixels below the laptop's top edge: its lower edge is at 982 - 700.
        QCOMPARE(screens.list().at(1).frame, (Rect{1512, 282, 800, 600}));
        QVERIFY(screens.isBuiltIn(1));
        QVERIFY(!screens.isBuiltIn(2));

        const int before = changes;
        xrandr({QStringLiteral("--delmonitor"), QStringLiteral("HDMI-1")});
        QTRY_COMPARE(screens.list().size(), std::size_t{1});
        QTRY_VERIFY(changes > before);
    }

    void theFirstScreenIsThePrimaryOne() { QCOMPARE(primaryGeometry(), QRectF(0, 0, 1512, 982)); }

    void aNewGeometryAndANewScaleAreChanges() {
        QtScreens screens(QStringLiteral("/nowhere"));
        int changes = 0;
        screens.observeChanges([&changes] { ++changes; });
        // This X server never changes the scale or sends one of the signals alone.
        QScreen* const screen = QGuiApplication::primaryScreen();
        Q_EMIT screen->logicalDotsPerInchChanged(97);
        QTRY_COMPARE(changes, 1);
        Q_EMIT screen->geometryChanged(screen->geometry());
        QTRY_COMPARE(changes, 2);
    }

    void aMachineWithoutANotchHasNoStrips_data() {
        QTest::addColumn<QByteArray>("compatible");
        QTest::newRow("no device tree") << QByteArray();
        QTest::newRow("model without a notch") << QByteArray("apple,j293\0apple,t8103\0", 23);
        QTest::newRow("other maker") << QByteArray("acme,board\0", 11);
    }

    void aMachineWithoutANotchHasNoStrips() {
        QFETCH(const QByteArray, compatible);
        KernelFolder kernel;
        QVERIFY(compatible.isEmpty() || kernel.setCompatible(compatible));
        QVERIFY(kernel.setShowNotch("Y\n"));
        const QtScreens screens(kernel.path());
        QVERIFY(screens.isBuiltIn(1));
        QVERIFY(!only(screens).auxiliaryTopLeftArea);
        QVERIFY(!hasNotch(builtInScreen(screens)));
        setMonitor(QStringLiteral("XWAYLAND0"), shown);
        QVERIFY(!screens.isBuiltIn(1));
        QVERIFY(!hasNotch(builtInScreen(screens)));
    }

    void theStripsFollowTheScreen() {
        KernelFolder kernel;
        QVERIFY(kernel.setCompatible(QByteArray("apple,j314s\0apple,t6000\0", 24)));
        QtScreens screens(kernel.path());
        int changes = 0;
        screens.observeChanges([&changes] { ++changes; });
        const auto now = [&] { return only(screens); };
        QCOMPARE(now().auxiliaryTopLeftArea, (Rect{0, 950, 664, 32}));
        QCOMPARE(now().auxiliaryTopRightArea, (Rect{848, 950, 664, 32}));
        QVERIFY(hasNotch(builtInScreen(screens)));

        // The band is hidden, and shown again.
        int before = changes;
        setMonitor(eDP, hidden);
        QTRY_VERIFY(changes > before);
        QVERIFY(!now().auxiliaryTopLeftArea);
        QVERIFY(!now().auxiliaryTopRightArea);
        QVERIFY(screens.isBuiltIn(1));
        QVERIFY(!hasNotch(builtInScreen(screens)));
        before = changes;
        setMonitor(eDP, shown);
        QTRY_VERIFY(changes > before);
        QVERIFY(hasNotch(builtInScreen(screens)));

        // Scaled.
        before = changes;
        setMonitor(eDP, smaller);
        QTRY_VERIFY(changes > before);
        constexpr double kStart = (3024.0 - 368) * 1344 / (2 * 3024);
        constexpr double kEnd = (3024.0 + 368) * 1344 / (2 * 3024);
        constexpr double kHeight = 64.0 * 873 / 1964;
        QCOMPARE(now().auxiliaryTopLeftArea, (Rect{0, 873 - kHeight, kStart, kHeight}));
        QCOMPARE(now().auxiliaryTopRightArea, (Rect{kEnd, 873 - kHeight, 1344 - kEnd, kHeight}));

        // A new primary screen beside it moves the origin of all positions.
        before = changes;
        xrandr({QStringLiteral("--setmonitor"), QStringLiteral("*HDMI-1"),
                QStringLiteral("800/200x600/150+1512+100"), QStringLiteral("none")});
        QTRY_COMPARE(screens.list().size(), std::size_t{2});
        QTRY_VERIFY(changes > before);
        QTRY_COMPARE(primaryGeometry(), QRectF(1512, 100, 800, 600));
        const auto builtIn = builtInScreen(screens);
        QVERIFY(hasNotch(builtIn));
        QCOMPARE(builtIn->frame, (Rect{-1512, -173, 1344, 873}));
        QCOMPARE(builtIn->auxiliaryTopLeftArea, (Rect{-1512, 700 - kHeight, kStart, kHeight}));
        QCOMPARE(builtIn->auxiliaryTopRightArea,
                 (Rect{kEnd - 1512, 700 - kHeight, 1344 - kEnd, kHeight}));
        for (const Screen& screen : screens.list()) {
            QCOMPARE(screen.auxiliaryTopLeftArea.has_value(), screen.frame == builtIn->frame);
        }
        before = changes;
        xrandr({QStringLiteral("--delmonitor"), QStringLiteral("HDMI-1")});
        QTRY_COMPARE(screens.list().size(), std::size_t{1});
        QTRY_VERIFY(changes > before);
        QTRY_COMPARE(now().auxiliaryTopLeftArea, (Rect{0, 873 - kHeight, kStart, kHeight}));
    }

    void theDriversSettingIsReadEachTime() {
        KernelFolder kernel;
        QVERIFY(kernel.setCompatible(QByteArray("apple,j314s\0", 12)));
        QVERIFY(kernel.setShowNotch("N\n"));
        const QtScreens screens(kernel.path());
        QVERIFY(!hasNotch(builtInScreen(screens)));
        QVERIFY(kernel.setShowNotch("Y\n"));
        QVERIFY(hasNotch(builtInScreen(screens)));
    }

    void underOlderXWaylandThePanelIsRecognisedByItsAspectRatio() {
        KernelFolder kernel;
        QVERIFY(kernel.setCompatible(QByteArray("apple,j314s\0", 12)));
        const QtScreens screens(kernel.path());
        setMonitor(QStringLiteral("XWAYLAND0"), shown);
        QVERIFY(screens.isBuiltIn(1));
        QVERIFY(!screens.isBuiltIn(2));
        QCOMPARE(only(screens).auxiliaryTopLeftArea, (Rect{0, 950, 664, 32}));
        QVERIFY(hasNotch(builtInScreen(screens)));
        setMonitor(QStringLiteral("XWAYLAND0"), hidden);
        QVERIFY(!screens.isBuiltIn(1));
        QVERIFY(!hasNotch(builtInScreen(screens)));
        setMonitor(QStringLiteral("DP-1"), shown);
        QVERIFY(!screens.isBuiltIn(1));
        QVERIFY(!only(screens).auxiliaryTopLeftArea);
    }
};

BRIMLET_TEST(TestQtScreens, QApplication)
#include "tst_qtscreens.moc"
