#include "tests/support/emulated.h"
#include "tests/support/pointer.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QRasterWindow>
#include <QTest>

#include <algorithm>

using namespace brimlet;

namespace {

const int kPatience = 5'000 * slowness();

int scale() {
    return qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
}

void clickWith(const QByteArray& button, QPoint position) {
    xdotool({QStringLiteral("mousemove"), QString::number(position.x()),
             QString::number(position.y()), QStringLiteral("click"), QString::fromLatin1(button)});
}

/// As the session's tray does at the end of a click.
void activateItem() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("app.brimlet.test.Tray"), QStringLiteral("/tray"),
        QStringLiteral("app.brimlet.test.Tray"), QStringLiteral("Activate"));
    call.setArguments({1400 * scale(), 970 * scale()});
    const QDBusMessage answer = QDBusConnection::sessionBus().call(call);
    QVERIFY2(answer.type() == QDBusMessage::ReplyMessage, qPrintable(answer.errorMessage()));
}

/// From the panel's lower edge, in points.
constexpr int kField = 16 + 34 + 14 + 34 + 14 + 34 + 14 + 14;

} // namespace

/// Clicks that take the keyboard from no window, as on the empty desktop of some window managers:
/// here there is none.
class TestOutsideClick final : public QObject {
    Q_OBJECT

    XServer m_x;

    [[nodiscard]] std::optional<ClientWindow> panelOf(const SimulatorProcess& program) const {
        return m_x.shownWindow(program.pid(), QStringLiteral("Brimlet panel"));
    }
    void awaitPanel(const SimulatorProcess& program) {
        QTRY_VERIFY_WITH_TIMEOUT(panelOf(program), kPatience);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }
    void init() { moveTo(QPoint(300, 600) * scale()); }

    void aClickOnTheEmptyDesktopClosesIt_data() {
        QTest::addColumn<QByteArray>("button");
        QTest::newRow("left") << QByteArray("1");
        QTest::newRow("middle") << QByteArray("2");
        QTest::newRow("right") << QByteArray("3");
    }
    void aClickOnTheEmptyDesktopClosesIt() {
        QFETCH(const QByteArray, button);
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QCOMPARE(program.startAgain(), 0);
        awaitPanel(program);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), panelOf(program).value_or(ClientWindow()).id,
                                  kPatience);
        // The wheel is no click.
        xdotool({QStringLiteral("click"), QStringLiteral("4"), QStringLiteral("click"),
                 QStringLiteral("5")});
        QVERIFY(panelOf(program));
        // Nor is one that begins on the panel.
        moveTo(panelOf(program)->geometry.topLeft() + QPoint(160, 20) * scale());
        xdotool({QStringLiteral("mousedown"), QStringLiteral("1")});
        moveTo(QPoint(300, 600) * scale());
        xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
        QVERIFY(panelOf(program));
        // One that presses a key is an on-screen keyboard's.
        xdotool({QStringLiteral("mousedown"), QStringLiteral("1"), QStringLiteral("key"),
                 QStringLiteral("a"), QStringLiteral("mouseup"), QStringLiteral("1")});
        QVERIFY(program.state().value(QStringLiteral("isMenuOpen")).toBool());
        QVERIFY(panelOf(program));
        // One beside the token field's menu only closes that.
        const auto shown = [&] {
            const auto windows = m_x.windowsOf(program.pid());
            return std::count_if(windows.begin(), windows.end(),
                                 [](const ClientWindow& window) { return window.isViewable; });
        };
        const auto before = shown();
        clickWith("3", panelOf(program)->geometry.bottomLeft() - QPoint(-160, kField) * scale());
        QTRY_VERIFY_WITH_TIMEOUT(shown() > before, kPatience);
        click(QPoint(300, 600) * scale());
        QTRY_COMPARE_WITH_TIMEOUT(shown(), before, kPatience);
        QVERIFY(program.state().value(QStringLiteral("isMenuOpen")).toBool());
        QVERIFY(panelOf(program));

        clickWith(button, QPoint(300, 600) * scale());
        QTRY_VERIFY_WITH_TIMEOUT(!panelOf(program), kPatience);
    }

    void aClickOnAWindowWithoutTheKeyboardLeavesItOpen() {
        // As those of on-screen keyboards and of input methods are.
        QRasterWindow keys;
        keys.setFlags(Qt::Window | Qt::BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus);
        keys.setGeometry(100, 400, 300, 200);
        keys.show();
        QVERIFY(QTest::qWaitForWindowExposed(&keys));
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QCOMPARE(program.startAgain(), 0);
        awaitPanel(program);
        click(QPoint(250, 500) * scale());
        QVERIFY(program.state().value(QStringLiteral("isMenuOpen")).toBool());
        QVERIFY(panelOf(program));
        keys.hide();
        click(QPoint(250, 500) * scale());
        QTRY_VERIFY_WITH_TIMEOUT(!panelOf(program), kPatience);
    }

    void aLongClickOnTheItemOfAnOpenPanelDoesNotOpenItAgain() {
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        moveTo(QPoint(1400, 970) * scale());
        activateItem();
        awaitPanel(program);
        // The tray reports the click when it ends.
        xdotool({QStringLiteral("mousedown"), QStringLiteral("1"), QStringLiteral("sleep"),
                 QStringLiteral("0.4"), QStringLiteral("mouseup"), QStringLiteral("1")});
        activateItem();
        QTRY_VERIFY_WITH_TIMEOUT(!panelOf(program), kPatience);
        QVERIFY(!program.state().value(QStringLiteral("isMenuOpen")).toBool());
    }
};

BRIMLET_TEST(TestOutsideClick, QGuiApplication)
#include "tst_outsideclick.moc"
