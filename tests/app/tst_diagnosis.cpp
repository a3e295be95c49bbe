#include "app/diagnosis.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <functional>

using namespace brimlet;

using Change = std::function<void(Diagnosis&)>;
Q_DECLARE_METATYPE(Change)

namespace {

constexpr NotchedPanel kPro14{3024, 1964, 368, 64};
const QByteArrayList kCompatible{"apple,j314s", "apple,t6000"};

BusReply answered(const QVariant& value) {
    return {BusReply::Outcome::Answered, value};
}

x11::Server server(std::uint32_t release) {
    return {QStringLiteral("The X.Org Foundation"), release, false, false, false};
}

DiagnosedScreen screen(const char* connector, bool hasNotch = false) {
    DiagnosedScreen screen;
    screen.connector = QString::fromLatin1(connector);
    screen.geometry = {0, 0, 1512, 982};
    screen.scale = 2;
    screen.isBuiltIn = screen.connector.startsWith(QLatin1StringView("eDP"));
    if (hasNotch) {
        screen.notch = NotchMetrics{184, 32};
    }
    return screen;
}

Diagnosis laptop() {
    Diagnosis facts;
    facts.version = QStringLiteral("0.1.0");
    facts.system = QStringLiteral("Debian GNU/Linux 12 (bookworm)");
    facts.kernel = QStringLiteral("linux 6.6.3");
    facts.architecture = QStringLiteral("arm64");
    facts.pageSize = 16384;
    facts.qtVersion = QStringLiteral("6.4.2");
    facts.desktop = QStringLiteral("KDE");
    facts.sessionType = QStringLiteral("wayland");
    facts.isWaylandDisplaySet = true;
    facts.isWaylandConnected = true;
    facts.layerShell = 4;
    facts.isDisplaySet = true;
    facts.xServer = {QStringLiteral("The X.Org Foundation"), 12401006, true, true, false};
    facts.overlay = QStringLiteral("Wayland, since it can be");
    facts.screens = {screen("eDP-1", true)};
    facts.panels = {{QStringLiteral("card0-eDP-1"), "connected", "3024x1964", "On"}};
    facts.model = "Apple MacBook Pro (14-inch, M1 Pro, 2021)";
    facts.compatible = kCompatible;
    facts.describedPanel = {302, 196, 74};
    facts.notchedPanel = kPro14;
    facts.showNotch = true;
    facts.notifierHost = answered(true);
    facts.secretService = SecretServiceState::Unlocked;
    facts.suspend = answered(false);
    facts.powerSaveMode = {BusReply::Outcome::NoService, {}};
    facts.lockedHint = answered(false);
    facts.screenSaver = answered(true);
    facts.gnomeScreenSaver = {BusReply::Outcome::NoService, {}};
    return facts;
}

} // namespace

class TestDiagnosis final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachFactIsALine() {
        const QString expected = QStringLiteral(
            "Brimlet: 0.1.0\n"
            "System: Debian GNU/Linux 12 (bookworm)\n"
            "Kernel: linux 6.6.3\n"
            "Architecture: arm64\n"
            "Page size: 16384 bytes\n"
            "Qt: 6.4.2\n"
            "Desktop: KDE\n"
            "Session type: wayland\n"
            "Wayland: connected\n"
            "Layer shell: version 4\n"
            "X11: XWayland 24.1.6 (The X.Org Foundation, release 12401006)\n"
            "X11 compositor: yes\n"
            "Overlay: Wayland, since it can be\n"
            "Screen: eDP-1, 1512 x 982 points at 0,0, scale 2, ratio 1.5397, built in\n"
            "Built-in panel: card0-eDP-1, status connected, 3024x1964 pixels, power On\n"
            "Model: Apple MacBook Pro (14-inch, M1 Pro, 2021)\n"
            "Device tree: apple,j314s apple,t6000\n"
            "Panel in the device tree: 302 x 196 mm, band of 74 pixels\n"
            "show_notch: on\n"
            "Notch: eDP-1, 184 x 32 points, from the table of models\n"
            "StatusNotifier tray: yes\n"
            "XEmbed tray: no\n"
            "Secret service: unlocked\n"
            "Suspend, logind: answers\n"
            "Power save mode, Mutter: not running\n"
            "Session locked, logind: no\n"
            "Session locked, screen saver: yes\n"
            "Session locked, GNOME: not running\n");
        QCOMPARE(diagnosisText(laptop()), expected);
    }

    void otherFacts_data() {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("line");
        const auto row = [](const char* line, const Change& change) {
            QTest::newRow(line) << change << QString::fromLatin1(line);
        };
        row("Wayland: WAYLAND_DISPLAY is not set",
            [](Diagnosis& facts) { facts.isWaylandDisplaySet = false; });
        row("Wayland: WAYLAND_DISPLAY is set, but not connected",
            [](Diagnosis& facts) { facts.isWaylandConnected = false; });
        row("Layer shell: not offered", [](Diagnosis& facts) { facts.layerShell.reset(); });
        row("Layer shell: unknown", [](Diagnosis& facts) {
            facts.layerShell.reset();
            facts.isWaylandConnected = false;
        });
        row("Overlay: X11, since it has to be",
            [](Diagnosis& facts) { facts.overlay = QStringLiteral("X11, since it has to be"); });

        row("X11: DISPLAY is not set", [](Diagnosis& facts) {
            facts.xServer.reset();
            facts.isDisplaySet = false;
        });
        row("X11: DISPLAY is set, but not connected",
            [](Diagnosis& facts) { facts.xServer.reset(); });
        row("X11: XWayland 22.1.9 (The X.Org Foundation, release 12201009), ignores input shapes",
            [](Diagnosis& facts) {
                facts.xServer = server(12201009);
                facts.xScreens = {QStringLiteral("eDP-1"), QStringLiteral("XWAYLAND1")};
            });
        row("X11: XWayland 23.2.7 (Fedora Project, release 12302007), ignores input shapes",
            [](Diagnosis& facts) {
                facts.xServer->vendor = QStringLiteral("Fedora Project");
                facts.xServer->release = 12302007;
            });
        row("X11: XWayland 24.1.0 (The X.Org Foundation, release 12401000)",
            [](Diagnosis& facts) { facts.xServer->release = 12401000; });
        row("X11: X server 21.1.7 (The X.Org Foundation, release 12101007)",
            [](Diagnosis& facts) { facts.xServer = server(12101007); });
        row("X11: X server 1.20.13 (The X.Org Foundation, release 12013000)",
            [](Diagnosis& facts) { facts.xServer = server(12013000); });
        row("X11: X server (Colin Harrison, release 12101007)", [](Diagnosis& facts) {
            facts.xServer = server(12101007);
            facts.xServer->vendor = QStringLiteral("Colin Harrison");
        });
        row("X11 compositor: no", [](Diagnosis& facts) { facts.xServer = server(12101007); });
        row("XEmbed tray: yes", [](Diagnosis& facts) { facts.xServer->hasTray = true; });

        row("Screen: unknown", [](Diagnosis& facts) { facts.screens.clear(); });
        row("Screen: HDMI-1, 1512 x 982 points at 1512,-20, scale 1.25, ratio 1.5397",
            [](Diagnosis& facts) {
                facts.screens.append(screen("HDMI-1"));
                facts.screens.last().geometry.moveTo(1512, -20);
                facts.screens.last().scale = 1.25;
            });
        row("Screen: eDP-1, 1512 x 945 points at 0,0, scale 2, ratio 1.6000, built in",
            [](Diagnosis& facts) { facts.screens.first().geometry.setHeight(945); });
        row("Screen: eDP-1, 1512 x 0 points at 0,0, scale 2, ratio unknown, built in",
            [](Diagnosis& facts) { facts.screens.first().geometry.setHeight(0); });
        row("Built-in panel: none", [](Diagnosis& facts) { facts.panels.clear(); });
        row("Built-in panel: card1-eDP-1, status disconnected, unknown pixels, power unknown",
            [](Diagnosis& facts) {
                facts.panels.append({QStringLiteral("card1-eDP-1"), "disconnected", "", ""});
            });

        row("Model: unknown", [](Diagnosis& facts) { facts.model.clear(); });
        row("Panel in the device tree: not described",
            [](Diagnosis& facts) { facts.describedPanel = {}; });
        row("Panel in the device tree: 290 x 189 mm, band of 0 pixels", [](Diagnosis& facts) {
            facts.describedPanel = {290, 189, 0};
        });
        row("Device tree: no device tree", [](Diagnosis& facts) { facts.compatible.clear(); });
        row("show_notch: off", [](Diagnosis& facts) { facts.showNotch = false; });
        row("show_notch: no such setting", [](Diagnosis& facts) { facts.showNotch.reset(); });
        row("Notch: HDMI-1, 162.5 x 28 points, from the table of models", [](Diagnosis& facts) {
            facts.screens = {screen("eDP-1"), screen("HDMI-1", true)};
            facts.screens.last().notch = NotchMetrics{162.5, 28};
        });
        row("Notch: none, because no device tree names the model", [](Diagnosis& facts) {
            facts.screens = {screen("eDP-1")};
            facts.compatible.clear();
            facts.notchedPanel.reset();
        });
        row("Notch: none, because the model is not in the table", [](Diagnosis& facts) {
            facts.screens = {screen("eDP-1")};
            facts.notchedPanel.reset();
        });
        row("Notch: unknown, because no screen can be measured",
            [](Diagnosis& facts) { facts.screens.clear(); });
        row("Notch: none, because show_notch is off", [](Diagnosis& facts) {
            facts.screens = {screen("eDP-1")};
            facts.showNotch = false;
        });
        row("Notch: none, because no built-in screen has the shape of the panel, 3024 x 1964 "
            "pixels, ratio 1.5397",
            [](Diagnosis& facts) { facts.screens = {screen("eDP-1")}; });

        row("StatusNotifier tray: no host",
            [](Diagnosis& facts) { facts.notifierHost = answered(false); });
        row("Suspend, logind: no bus that answers", [](Diagnosis& facts) { facts.suspend = {}; });
        row("Power save mode, Mutter: 3",
            [](Diagnosis& facts) { facts.powerSaveMode = answered(3); });
        row("Session locked, GNOME: no answer", [](Diagnosis& facts) {
            facts.gnomeScreenSaver = {BusReply::Outcome::NoAnswer, {}};
        });
        row("Session locked, logind: answers with an error", [](Diagnosis& facts) {
            facts.lockedHint = {BusReply::Outcome::Refused, {}};
        });

        row("System: unknown", [](Diagnosis& facts) { facts.system.clear(); });
        row("Desktop: KDE Session type: x11", [](Diagnosis& facts) {
            facts.desktop = QStringLiteral("KDE\nSession type:\tx11\x1b\n");
        });
    }
    void otherFacts() {
        QFETCH(const Change, change);
        QFETCH(const QString, line);
        Diagnosis facts = laptop();
        QVERIFY(!diagnosisText(facts).split(u'\n').contains(line));
        change(facts);
        const QString text = diagnosisText(facts);
        QVERIFY2(text.split(u'\n').contains(line), qPrintable(text));
    }

    void anXServerThatIsAbsentHasNoCompositorAndNoTray() {
        Diagnosis facts = laptop();
        facts.xServer.reset();
        const QString text = diagnosisText(facts);
        QVERIFY2(!text.contains(u"compositor") && !text.contains(u"XEmbed"), qPrintable(text));
    }

    void theSecretServicesState_data() {
        QTest::addColumn<SecretServiceState>("state");
        QTest::addColumn<QString>("text");
        using State = SecretServiceState;
        const auto row = [](State state, const char* text) {
            QTest::newRow(text) << state << QString::fromLatin1(text);
        };
        row(State::NoBus, "no bus that answers");
        row(State::Absent, "not running");
        row(State::NotStarted, "not running, started when it is needed");
        row(State::NoAnswer, "no answer");
        row(State::Failed, "answers with an error");
        row(State::NoCollection, "has no default collection");
        row(State::Locked, "locked");
        row(State::Unlocked, "unlocked");
    }
    void theSecretServicesState() {
        QFETCH(const SecretServiceState, state);
        QFETCH(const QString, text);
        Diagnosis facts = laptop();
        facts.secretService = state;
        const QString line = QStringLiteral("Secret service: ") + text;
        QVERIFY(diagnosisText(facts).split(u'\n').contains(line));
    }

    void longTextsAreCut() {
        Diagnosis facts = laptop();
        facts.desktop = QString(10'000, u'x');
        QVERIFY(diagnosisText(facts).contains(QStringLiteral("\nDesktop: ") + QString(200, u'x') +
                                              u'\n'));
    }
};

BRIMLET_TEST(TestDiagnosis, NoApplication)
#include "tst_diagnosis.moc"
