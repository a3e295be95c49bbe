#include "tests/support/emulated.h"
#include "tests/support/pointer.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"
#include "tests/support/windowproperties.h"
#include "tests/support/xserver.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTest>
#include <QWidget>

using namespace brimlet;

namespace {

const int kPatience = 5'000 * slowness(); // tried every 50 ms, not counting what a try takes

int scale() {
    return qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
}

bool hasNotifierTray() {
    return qEnvironmentVariable("BRIMLET_SESSION_TRAY") == QStringLiteral("notifier");
}

/// Calls the session's tray, a StatusNotifierItem one.
void askTray(const char* method, const QVariantList& arguments = {}) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("app.brimlet.test.Tray"), QStringLiteral("/tray"),
        QStringLiteral("app.brimlet.test.Tray"), QString::fromLatin1(method));
    call.setArguments(arguments);
    const QDBusMessage answer = QDBusConnection::sessionBus().call(call);
    QVERIFY2(answer.type() == QDBusMessage::ReplyMessage, qPrintable(answer.errorMessage()));
}

} // namespace

/// The panel used with pointer and keyboard, from a tray of either kind.
class TestMenuByMouse final : public QObject {
    Q_OBJECT

    XServer m_x;
    bool m_isLeftNext = false;

    [[nodiscard]] std::optional<ClientWindow> panelOf(const SimulatorProcess& program) const {
        for (const ClientWindow& window : m_x.windowsOf(program.pid())) {
            if (window.title == QStringLiteral("Brimlet panel") && window.isViewable) {
                return window;
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] std::optional<ClientWindow> iconOf(const SimulatorProcess& program) const {
        for (const ClientWindow& window : m_x.windowsOf(program.pid())) {
            const QSize size = window.geometry.size();
            if (window.isViewable && size == QSize(22, 22) * scale()) {
                return window;
            }
        }
        return std::nullopt;
    }
    /// Clicks the status item where the tray shows it.
    void clickItem(const SimulatorProcess& program) {
        if (hasNotifierTray()) {
            // This tray shows nothing; the pointer is where its picture would be.
            moveTo(QPoint(1400, 970) * scale());
            askTray("Activate", {1400 * scale(), 970 * scale()});
            return;
        }
        clickIcon(program, QStringLiteral("1"));
    }
    /// Clicks the icon in an XEmbed tray.
    void clickIcon(const SimulatorProcess& program, const QString& button) {
        std::optional<ClientWindow> icon;
        QTRY_VERIFY_WITH_TIMEOUT((icon = iconOf(program)), kPatience);
        // On alternating sides of the icon: two clicks at one place may count as a double click.
        m_isLeftNext = !m_isLeftNext;
        moveTo(icon->geometry.center() + QPoint(m_isLeftNext ? -7 : 7, 0) * scale());
        xdotool({QStringLiteral("click"), button});
    }
    /// Chooses the entry of the item's menu, the `index`th of Open, Pause and Quit.
    void chooseFromMenu(const SimulatorProcess& program, int index) {
        if (hasNotifierTray()) {
            constexpr std::array kLabels{"Open", "Pause ads 24h", "Quit"};
            askTray("Choose", {QString::fromLatin1(kLabels.at(static_cast<std::size_t>(index)))});
            return;
        }
        clickIcon(program, QStringLiteral("3"));
        QTRY_VERIFY_WITH_TIMEOUT(menuOf(program), kPatience);
        for (int i = 0; i <= index; ++i) {
            key("Down");
        }
        key("Return");
    }
    /// The item's menu, which the program shows itself in an XEmbed tray.
    [[nodiscard]] std::optional<ClientWindow> menuOf(const SimulatorProcess& program) const {
        for (const ClientWindow& window : m_x.windowsOf(program.pid())) {
            const QSize size = window.geometry.size() / scale();
            // Wider than the icon, and higher than the capsules.
            if (window.isViewable && size.width() > 60 && size.height() > 60 &&
                window.title != QStringLiteral("Brimlet panel")) {
                return window;
            }
        }
        return std::nullopt;
    }
    /// Clicks the panel `up` points above its lower edge, in the middle.
    void clickPanel(const SimulatorProcess& program, int up) {
        const auto panel = panelOf(program);
        QVERIFY(panel);
        click({panel->geometry.center().x(),
               panel->geometry.y() + panel->geometry.height() - up * scale()});
    }
    /// Waits until the panel is shown.
    void awaitPanel(const SimulatorProcess& program) {
        QTRY_VERIFY_WITH_TIMEOUT(panelOf(program), kPatience);
    }

    // From the panel's lower edge: 16 points, then buttons of 34 and gaps of 14.
    static constexpr int kQuit = 16 + 17;
    static constexpr int kPause = kQuit + 48;
    static constexpr int kSave = kPause + 48;
    static constexpr int kField = kSave + 17 + 14 + 14;
    static constexpr int kAgree = kField + 14 + 14 + 17;

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }
    void init() { moveTo(QPoint(300, 600) * scale()); }

    void theTrayListsItByTheProgramsName() {
        SimulatorProcess program({});
        if (hasNotifierTray()) {
            const auto item = [] {
                const auto question = QDBusMessage::createMethodCall(
                    QStringLiteral("app.brimlet.test.Tray"), QStringLiteral("/tray"),
                    QStringLiteral("app.brimlet.test.Tray"), QStringLiteral("Items"));
                const QDBusMessage answer = QDBusConnection::sessionBus().call(question);
                return QJsonDocument::fromJson(answer.arguments().value(0).toString().toUtf8())
                    .array()
                    .at(0)
                    .toObject();
            };
            QTRY_COMPARE_WITH_TIMEOUT(item().value(QStringLiteral("Title")).toString(),
                                      QStringLiteral("Brimlet"), kPatience);
            QTRY_COMPARE_WITH_TIMEOUT(item().value(QStringLiteral("ToolTipTitle")).toString(),
                                      program.statusLine(), kPatience);
            return;
        }
        std::optional<ClientWindow> icon;
        QTRY_VERIFY_WITH_TIMEOUT((icon = iconOf(program)), kPatience);
        QCOMPARE(icon->title, QStringLiteral("Brimlet"));
        QCOMPARE(propertiesOf(icon->id, {QStringLiteral("WM_CLASS")}),
                 QByteArray("WM_CLASS(STRING) = \"brimlet-simulator\", \"Brimlet\"\n"));
    }

    void aHostOpensPastesSignsPausesAndQuits() {
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QVERIFY(!panelOf(program));
        clickItem(program);
        awaitPanel(program);
        // Above the bar at the lower right, and wholly on the screen.
        const QRect place = panelOf(program)->geometry;
        QCOMPARE(place.width(), 320 * scale());
        QVERIFY(m_x.workArea().contains(place));
        QVERIFY(place.y() > 200 * scale() && place.x() > 900 * scale());
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), panelOf(program).value_or(ClientWindow()).id,
                                  kPatience);

        clickPanel(program, kField);
        type("demo-host-token");
        clickPanel(program, kSave);
        QTRY_VERIFY_WITH_TIMEOUT(
            service.requestLines().contains(QStringLiteral("POST /api/host/heartbeat")), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(
            program.statusLine(),
            QStringLiteral("Sign the host agreement. Pay is an estimate, not a guarantee."),
            kPatience);
        // It has grown upwards by the agreement's text.
        QTRY_VERIFY_WITH_TIMEOUT(panelOf(program)->geometry.height() > place.height(), kPatience);
        QCOMPARE(panelOf(program)->geometry.bottom(), place.bottom());

        clickPanel(program, kAgree);
        QTRY_VERIFY_WITH_TIMEOUT(
            service.requestLines().contains(QStringLiteral("POST /api/host/agree")), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(
            program.statusLine().startsWith(QStringLiteral("Ads on. This week ~€")), kPatience);
        clickPanel(program, kPause);
        QTRY_VERIFY_WITH_TIMEOUT(!program.isPanelShown(), kPatience);
        clickPanel(program, kQuit);
        QCOMPARE(program.exitCode(), 0);
    }

    void returnInTheFieldSavesTheToken() {
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        clickItem(program);
        awaitPanel(program);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), panelOf(program).value_or(ClientWindow()).id,
                                  kPatience);
        clickPanel(program, kField);
        type("demo-host-token");
        QCOMPARE(program.state().value(QStringLiteral("hasToken")).toBool(), false);
        key("Return");
        QTRY_COMPARE_WITH_TIMEOUT(program.state().value(QStringLiteral("hasToken")).toBool(), true,
                                  kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(
            service.requestLines().contains(QStringLiteral("POST /api/host/heartbeat")), kPatience);
    }

    void theItemsMenuOpensPausesAndQuits() {
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        chooseFromMenu(program, 0);
        awaitPanel(program);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), panelOf(program).value_or(ClientWindow()).id,
                                  kPatience);
        key("Escape");
        QTRY_VERIFY_WITH_TIMEOUT(!panelOf(program), kPatience);
        chooseFromMenu(program, 1);
        QTRY_VERIFY_WITH_TIMEOUT(!program.isPanelShown(), kPatience);
        QVERIFY(program.statusLine().startsWith(QStringLiteral("Paused 24h.")));
        chooseFromMenu(program, 2);
        QCOMPARE(program.exitCode(), 0);
    }

    void aSecondClickOnTheItemClosesAndAThirdOpens() {
        const PlacementProcess service;
        // Accelerated, so that a click after closing does not count as the click that closed it.
        SimulatorProcess program({{QStringLiteral("infoDictionary"),
                                   QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
                                  {QStringLiteral("speed"), 100}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        for (int i = 0; i < 3; ++i) {
            clickItem(program);
            awaitPanel(program);
            clickItem(program);
            QTRY_VERIFY_WITH_TIMEOUT(!panelOf(program), kPatience);
        }
    }

    void escapeAndClicksOutsideCloseIt() {
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QCOMPARE(program.startAgain(), 0);
        awaitPanel(program);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), panelOf(program).value_or(ClientWindow()).id,
                                  kPatience);
        key("Escape");
        QTRY_VERIFY_WITH_TIMEOUT(!panelOf(program), kPatience);

        QWidget outside;
        outside.setGeometry(100, 400, 300, 200);
        outside.show();
        QVERIFY(QTest::qWaitForWindowActive(&outside));
        QCOMPARE(program.startAgain(), 0);
        awaitPanel(program);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), panelOf(program).value_or(ClientWindow()).id,
                                  kPatience);
        click(QPoint(250, 500) * scale());
        QTRY_VERIFY_WITH_TIMEOUT(!panelOf(program), kPatience);
        QVERIFY(program.state().value(QStringLiteral("statusLine")).isString());
    }

    void theTokenIsForgottenUnlessSaved() {
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QCOMPARE(program.startAgain(), 0);
        awaitPanel(program);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), panelOf(program).value_or(ClientWindow()).id,
                                  kPatience);
        clickPanel(program, kField);
        type("never-saved");
        key("Escape");
        QTRY_VERIFY_WITH_TIMEOUT(!panelOf(program), kPatience);
        QCOMPARE(program.startAgain(), 0);
        awaitPanel(program);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), panelOf(program).value_or(ClientWindow()).id,
                                  kPatience);
        clickPanel(program, kSave);
        QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().size() > 4, kPatience);
        QCOMPARE(program.state().value(QStringLiteral("hasToken")).toBool(), false);
    }
};

BRIMLET_TEST(TestMenuByMouse, QApplication)
#include "tst_menubymouse.moc"
