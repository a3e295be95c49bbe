#include "tests/app/waylandapplication.h"
#include "tests/app/waylandscreen.h"
#include "tests/support/testprogram.h"
#include "tests/support/wayland/panel.h"
#include "tests/support/wayland/seat.h"
#include "tests/support/xserver.h"

#include <QMouseEvent>
#include <QRasterWindow>
#include <QTest>

#include <csignal>
#include <optional>

using namespace brimlet;
using namespace brimlet::WaylandScreen;

namespace {

constexpr int kBar = 28;
constexpr QRect kScreen(0, 0, 1512, 982);
constexpr QPoint kElsewhere(300, 500);

/// A window of another program, maximised so that its place is known.
class OtherWindow final : public QRasterWindow {
public:
    OtherWindow() { showMaximized(); }
    int clicks = 0;
    QString typed;

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override { ++clicks; }
    void keyPressEvent(QKeyEvent* event) override { typed += event->text(); }
};

} // namespace

/// Where the panel stands on a Wayland desktop, and how it closes. It is a window of XWayland.
class TestWaylandPanel final : public QObject {
    Q_OBJECT

    desktop::Seat m_seat;
    XServer m_x;
    std::optional<SimulatorProcess> m_program;
    std::optional<OtherWindow> m_other;

    /// The panel's frame; null while it is not shown.
    [[nodiscard]] QRect frame() const {
        const auto panel = m_x.shownWindow(m_program->pid(), QStringLiteral("Brimlet panel"));
        return panel ? panel->geometry : QRect();
    }
    /// Whether the panel is XWayland's window with the keyboard.
    [[nodiscard]] bool hasKeyboard() const {
        const auto panel = m_x.shownWindow(m_program->pid(), QStringLiteral("Brimlet panel"));
        return panel && m_x.focus() == panel->id;
    }
    void open() {
        QCOMPARE(m_program->startAgain(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(frame().isValid(), kPatience);
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session");
        m_seat.moveTo(kElsewhere);
        m_other.emplace();
        m_program.emplace(QJsonObject());
    }
    void cleanupTestCase() { QCOMPARE(m_program->endBySignal(SIGTERM), 0); }

    void itOpensInTheCornerAtTheBar_data() {
        QTest::addColumn<bool>("isAtTop");
        QTest::newRow("top") << true;
        QTest::newRow("bottom") << false;
    }
    void itOpensInTheCornerAtTheBar() {
        QFETCH(const bool, isAtTop);
        using desktop::Panel;
        const Panel bar(kBar, Qt::gray, Panel::Space::Reserved,
                        isAtTop ? Panel::Edge::Top : Panel::Edge::Bottom);
        OtherWindow& other = *m_other;
        other.clicks = 0;
        other.typed.clear();
        QTRY_COMPARE_WITH_TIMEOUT(other.width(), kScreen.width(), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(other.isActive(), kPatience);
        open();
        const QRect free =
            (isAtTop ? kScreen.adjusted(0, kBar, 0, 0) : kScreen.adjusted(0, 0, 0, -kBar))
                .adjusted(6, 6, -6, -6);
        if (isAtTop) {
            QTRY_COMPARE_WITH_TIMEOUT(frame().topRight(), free.topRight(), kPatience);
        } else {
            QTRY_COMPARE_WITH_TIMEOUT(frame().bottomRight(), free.bottomRight(), kPatience);
        }
        QTRY_VERIFY_WITH_TIMEOUT(!other.isActive() && hasKeyboard(), kPatience);
        // The window below gets the click, and the keyboard with it.
        m_seat.click(kElsewhere);
        QTRY_VERIFY_WITH_TIMEOUT(!frame().isValid(), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(other.clicks, 1, kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(other.isActive(), kPatience);
        m_seat.type("a");
        QTRY_COMPARE_WITH_TIMEOUT(other.typed, QStringLiteral("a"), kPatience);
    }

    void aClickOnTheEmptyDesktopClosesIt() {
        if (desktop::is("kwin")) {
            QSKIP("KWin alone has no desktop; Plasma's is a window");
        }
        m_other.reset();
        open();
        QTRY_VERIFY_WITH_TIMEOUT(hasKeyboard(), kPatience);
        m_seat.click(kElsewhere);
        QTRY_VERIFY_WITH_TIMEOUT(!frame().isValid(), kPatience);
    }
};

BRIMLET_TEST(TestWaylandPanel, WaylandApplication)
#include "tst_waylandpanel.moc"
