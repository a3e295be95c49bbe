#include "platform/linux/x11menuwindow.h"
#include "platform/linux/x11watch.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"
#include "tests/support/emulated.h"
#include "tests/support/fakes.h"
#include "tests/support/plaincorners.h"
#include "tests/support/pointer.h"
#include "tests/support/rootmessages.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/windowproperties.h"
#include "tests/support/xserver.h"
#include "tests/support/xsynchronise.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <array>
#include <cstring>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

constexpr QRgb kBackground = qRgb(40, 40, 60);
constexpr QRgb kHairline = qRgb(90, 90, 110);
constexpr QRgb kBehind = qRgb(200, 60, 20);

/// Content with a size hint that tests set. Counts its clicks.
class Content final : public QWidget {
public:
    Content() {
        QPalette colors = palette();
        colors.setColor(QPalette::Window, QColor(kBackground));
        colors.setColor(QPalette::Mid, QColor(kHairline));
        setPalette(colors);
    }
    [[nodiscard]] QSize sizeHint() const override { return m_size; }
    void setHint(QSize size) {
        m_size = size;
        updateGeometry();
    }
    int clicks = 0;

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override { ++clicks; }

private:
    QSize m_size{340, 400};
};

/// A window of one colour that records its clicks.
class Other final : public QWidget {
public:
    explicit Other(const QRect& place) {
        setWindowFlag(Qt::FramelessWindowHint);
        setGeometry(place);
        QPalette colors = palette();
        colors.setColor(QPalette::Window, QColor(kBehind));
        setPalette(colors);
    }
    QList<QPoint> clicks;

protected:
    void mousePressEvent(QMouseEvent* event) override {
        clicks << event->globalPosition().toPoint();
    }
};

/// Converts the status item's place from Qt's space.
[[nodiscard]] std::optional<Rect> itemAt(const QRect& place) {
    return fromQt(QRectF(place), primaryGeometry());
}

} // namespace

/// The panel's window on a real desktop.
class TestX11MenuWindow final : public QObject {
    Q_OBJECT

    XServer m_x;
    Content* m_content = nullptr;
    FakeReduceMotion m_reduceMotion;
    std::unique_ptr<X11MenuWindow> m_window;
    int m_dismissals = 0;
    bool m_wasPresented = false; ///< While its last dismissal was announced.
    QProcess m_bar;

    [[nodiscard]] xcb_window_t id() const { return static_cast<xcb_window_t>(m_window->winId()); }
    /// The panel's frame that the X server reports; null while the window is hidden.
    [[nodiscard]] QRect place() const {
        for (const ClientWindow& window : m_x.windowsOf(QCoreApplication::applicationPid())) {
            if (window.id == id() && window.isViewable) {
                return window.geometry;
            }
        }
        return {};
    }
    [[nodiscard]] bool hasKeyboard() const { return m_x.focus() == id(); }
    void present(const std::optional<Rect>& item) {
        m_window->present(item);
        QTRY_VERIFY_WITH_TIMEOUT(m_window->isActiveWindow(), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), id(), kPatience);
    }
    [[nodiscard]] QRgb pixel(QPoint at) const { return m_x.pixel(at).rgb(); }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
        moveTo(QPoint(5, 900));
        auto content = std::make_unique<Content>();
        m_content = content.get();
        m_reduceMotion.set(true);
        m_window = std::make_unique<X11MenuWindow>(std::move(content), primaryGeometry,
                                                   m_reduceMotion, plainCorners);
        m_dismissals = 0;
        m_window->observeDismissals([this] {
            ++m_dismissals;
            m_wasPresented = m_window->isPresented();
        });
    }
    void cleanup() {
        m_window.reset();
        m_bar.terminate();
        m_bar.waitForFinished();
        QTRY_COMPARE_WITH_TIMEOUT(QGuiApplication::primaryScreen()->availableGeometry(),
                                  QGuiApplication::primaryScreen()->geometry(), kPatience);
    }

    void itStartsHidden() {
        QVERIFY(!m_window->isPresented());
        QCOMPARE(m_dismissals, 0);
        m_window->dismiss();
        QCOMPARE(m_dismissals, 0);
    }

    void itOpensAtTheItemAndTakesTheKeyboard() {
        present(itemAt(QRect(700, 0, 24, 24)));
        QVERIFY(m_window->isPresented());
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(542, 30, 340, 400), kPatience);
        QCOMPARE(m_content->size(), QSize(340, 400));
    }

    void withoutAPlaceItOpensInTheCorner() {
        present(std::nullopt);
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(1166, 6, 340, 400), kPatience);
    }

    void itFollowsTheItemWhileItIsShown() {
        m_window->follow(*itemAt(QRect(100, 0, 24, 24)));
        QVERIFY(!m_window->isPresented());
        present(std::nullopt);
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(1166, 6, 340, 400), kPatience);
        m_window->follow(*itemAt(QRect(700, 954, 28, 28)));
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(544, 548, 340, 400), kPatience);
        QVERIFY(hasKeyboard());
        // It grows from there.
        m_content->setHint(QSize(340, 500));
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(544, 448, 340, 500), kPatience);
        QCOMPARE(m_dismissals, 0);
    }

    void focusStartsBeforeTheFirstControl() {
        QLineEdit field(m_content);
        present(std::nullopt);
        key("x");
        key("Tab");
        QTRY_VERIFY_WITH_TIMEOUT(field.hasFocus(), kPatience);
        key("y");
        QTRY_COMPARE_WITH_TIMEOUT(field.text(), QStringLiteral("y"), kPatience);
        // It starts there again when the panel is opened again.
        m_window->dismiss();
        QTRY_VERIFY_WITH_TIMEOUT(!m_x.isMapped(id()) && !hasKeyboard(), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(QGuiApplication::focusWindow() == nullptr, kPatience);
        present(std::nullopt);
        QVERIFY(!field.hasFocus());
        field.setParent(nullptr);
    }

    void escapeClosesIt() {
        QLineEdit field(m_content);
        for (const bool isInField : {false, true}) {
            m_dismissals = 0;
            present(std::nullopt);
            if (isInField) {
                field.setFocus();
            }
            key("Escape");
            QTRY_VERIFY_WITH_TIMEOUT(!m_window->isPresented(), kPatience);
            QTRY_VERIFY_WITH_TIMEOUT(!m_x.isMapped(id()), kPatience);
            QCOMPARE(m_dismissals, 1);
        }
        field.setParent(nullptr);
    }

    void aClickOnAnotherWindowClosesItAndReachesThatWindow() {
        Other other(QRect(50, 300, 400, 400));
        other.show();
        QVERIFY(QTest::qWaitForWindowExposed(&other));
        present(std::nullopt);
        click(QPoint(100, 350));
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isPresented(), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(other.clicks, QList<QPoint>{QPoint(100, 350)}, kPatience);
        QCOMPARE(m_dismissals, 1);
        // It can be opened again.
        present(std::nullopt);
        QVERIFY(m_window->isPresented());
        m_window->dismiss();
        QCOMPARE(m_dismissals, 2);
    }

    void aClickInsideDoesNotCloseIt() {
        present(std::nullopt);
        QTRY_VERIFY_WITH_TIMEOUT(place().isValid(), kPatience);
        click(place().center());
        QTRY_COMPARE_WITH_TIMEOUT(m_content->clicks, 1, kPatience);
        QVERIFY(m_window->isPresented());
        QVERIFY(hasKeyboard());
    }

    void theEdgeBesideTheItemStaysWhenTheContentChanges_data() {
        QTest::addColumn<QRect>("item");
        QTest::addColumn<QRect>("small");
        QTest::addColumn<QRect>("large");
        QTest::newRow("bar at the top")
            << QRect(700, 0, 24, 24) << QRect(542, 30, 340, 200) << QRect(542, 30, 340, 600);
        QTest::newRow("bar at the bottom")
            << QRect(700, 954, 28, 28) << QRect(544, 748, 340, 200) << QRect(544, 348, 340, 600);
    }
    void theEdgeBesideTheItemStaysWhenTheContentChanges() {
        QFETCH(QRect, item);
        QFETCH(QRect, small);
        QFETCH(QRect, large);
        m_content->setHint(small.size());
        present(itemAt(item));
        QTRY_COMPARE_WITH_TIMEOUT(place(), small, kPatience);
        m_content->setHint(large.size());
        QTRY_COMPARE_WITH_TIMEOUT(place(), large, kPatience);
        QCOMPARE(m_content->size(), large.size());
        m_content->setHint(small.size());
        QTRY_COMPARE_WITH_TIMEOUT(place(), small, kPatience);
        QVERIFY(hasKeyboard());
        QCOMPARE(m_dismissals, 0);
    }

    void anotherFrameIsCorrectedOnce() {
        const QRect wanted(542, 30, 340, 200);
        m_content->setHint(wanted.size());
        present(itemAt(QRect(700, 0, 24, 24)));
        QTRY_COMPARE_WITH_TIMEOUT(place(), wanted, kPatience);
        const QRect frame = m_window->geometry();
        const auto resizeTo = [&](const QString& height) {
            return QProcess::execute(QStringLiteral("xdotool"),
                                     {QStringLiteral("windowsize"), QString::number(id()),
                                      QString::number(frame.width()), height});
        };
        QSignalSpy resized(m_window->windowHandle(), &QWindow::heightChanged);
        QCOMPARE(resizeTo(QStringLiteral("600")), 0);
        QTRY_VERIFY_WITH_TIMEOUT(resized.size() >= 2, kPatience); // there and back
        QTRY_COMPARE_WITH_TIMEOUT(place(), wanted, kPatience);
        QCOMPARE(m_window->geometry(), frame);
        // A second change stays until the content changes.
        QCOMPARE(resizeTo(QStringLiteral("500")), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_window->height(), 500, kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.geometry(id()).height(), 500, kPatience);
        m_content->setHint(QSize(340, 300));
        QTRY_COMPARE_WITH_TIMEOUT(place().size(), QSize(340, 300), kPatience);
    }

    void itStaysInsideTheAvailableArea() {
        m_bar.start(sourcePath(u"tests/support/session/tray-host"), {QStringLiteral("xembed")});
        const QRect whole = QGuiApplication::primaryScreen()->geometry();
        QTRY_VERIFY_WITH_TIMEOUT(QGuiApplication::primaryScreen()->availableGeometry() != whole,
                                 kPatience);
        const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
        QCOMPARE(available, m_x.workArea());
        m_content->setHint(QSize(3000, 3000));
        present(itemAt(QRect(1480, 956, 24, 24)));
        const QRect largest = available.adjusted(6, 6, -6, -6);
        QTRY_COMPARE_WITH_TIMEOUT(place(), largest, kPatience);
        QCOMPARE(m_content->size(), largest.size());
        m_content->setHint(QSize(340, 400));
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(1166, 548, 340, 400), kPatience);
    }

    void contentLargerThanTheScreenIsLimitedToIt() {
        m_content->setHint(QSize(5000, 5000));
        present(std::nullopt);
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(6, 6, 1500, 970), kPatience);
    }

    void itsCornersAreRoundWhereACompositorRuns() {
        Other behind(QRect(0, 0, 1512, 982));
        behind.show();
        QVERIFY(QTest::qWaitForWindowExposed(&behind));
        present(itemAt(QRect(700, 0, 24, 24)));
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(542, 30, 340, 400), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(pixel(place().center()), kBackground, kPatience);
        const bool isRound = X11Watch::shared().hasCompositor();
        const QRect shown = place();
        for (const QPoint& at :
             {shown.topLeft(), shown.topRight(), shown.bottomLeft(), shown.bottomRight()}) {
            // In the corner is what is behind it, in the shadow.
            const auto isAsExpected = [&] {
                return isRound ? qRed(pixel(at)) > 100 && qRed(pixel(at)) < qRed(kBehind)
                               : pixel(at) != kBackground && pixel(at) != kBehind;
            };
            QTRY_VERIFY_WITH_TIMEOUT(isAsExpected(), kPatience);
        }
        // Between the corners there is the hairline at the edges, and the background inside it.
        const QPoint middle = shown.center();
        for (const QPoint& at :
             {QPoint(middle.x(), shown.top()), QPoint(middle.x(), shown.bottom()),
              QPoint(shown.left(), middle.y()), QPoint(shown.right(), middle.y())}) {
            QCOMPARE(pixel(at), kHairline);
        }
        QCOMPARE(pixel({middle.x(), shown.top() + 1}), kBackground);
        // The shadow ends softly, and below the panel it is the largest.
        const auto redAt = [&](QPoint from, QPoint step) { return qRed(pixel(from + step)); };
        const QPoint below(middle.x(), shown.bottom());
        QCOMPARE(redAt(below, {0, 2}) < redAt(below, {0, 12}), isRound);
        QCOMPARE(redAt(below, {0, 12}) < qRed(kBehind), isRound);
        QCOMPARE(redAt({shown.right(), middle.y()}, {12, 0}) > redAt(below, {0, 12}), isRound);
        QCOMPARE(pixel(below + QPoint(0, 27)), kBehind);
    }

    void clicksOnItsShadowPass() {
        if (!X11Watch::shared().hasCompositor()) {
            QSKIP("there is no shadow without a compositor");
        }
        Other other(QRect(400, 50, 600, 600));
        other.show();
        QVERIFY(QTest::qWaitForWindowExposed(&other));
        present(itemAt(QRect(700, 0, 24, 24)));
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(542, 30, 340, 400), kPatience);
        const QPoint shadow(534, 200);
        QVERIFY(m_window->geometry().contains(shadow));
        click(shadow);
        QTRY_COMPARE_WITH_TIMEOUT(other.clicks, QList<QPoint>{shadow}, kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isPresented(), kPatience);
    }

    void itFadesUnlessMotionIsReduced_data() {
        QTest::addColumn<bool>("isReduced");
        QTest::newRow("fades") << false;
        QTest::newRow("reduced motion") << true;
    }
    void itFadesUnlessMotionIsReduced() {
        QFETCH(const bool, isReduced);
        m_reduceMotion.set(isReduced);
        const bool fades = !isReduced && X11Watch::shared().hasCompositor();
        m_window->present(itemAt(QRect(700, 0, 24, 24)));
        QCOMPARE(m_window->windowOpacity() < 1, fades);
        QCOMPARE(m_content->geometry().translated(m_window->pos()).y() < 30, fades);
        QVERIFY(m_window->isPresented());
        QTRY_COMPARE_WITH_TIMEOUT(m_window->windowOpacity(), 1.0, kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(m_content->geometry().translated(m_window->pos()),
                                  QRect(542, 30, 340, 400), kPatience);
        m_window->dismiss();
        // At once for everybody else.
        QVERIFY(!m_window->isPresented());
        QCOMPARE(m_dismissals, 1);
        QCOMPARE(m_window->isVisible(), fades);
        m_window->dismiss();
        QCOMPARE(m_dismissals, 1);
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isVisible(), kPatience);
        QCOMPARE(m_dismissals, 1);
    }

    void whileItFadesOutItTakesNoKeyOrClick() {
        if (!X11Watch::shared().hasCompositor()) {
            QSKIP("nothing fades without a compositor");
        }
        m_reduceMotion.set(false);
        QLineEdit field(m_content);
        present(itemAt(QRect(700, 0, 24, 24)));
        m_window->dismiss();
        QVERIFY(!m_wasPresented);
        QTest::keyClick(m_window.get(), Qt::Key_Tab);
        QVERIFY(!field.hasFocus());
        QVERIFY(m_window->isVisible());
        synchronise(xcbConnectionOfQt());
        QVERIFY(m_x.inputShape(id()).empty());
        // Nor does anything else that comes now bring it back.
        m_content->setHint(QSize(340, 500));
        QEvent deactivated(QEvent::WindowDeactivate);
        QApplication::sendEvent(m_window.get(), &deactivated);
        QTRY_VERIFY_WITH_TIMEOUT(!m_window->isVisible(), kPatience);
        QCOMPARE(m_dismissals, 1);
        // Which does not close it when it has opened again.
        present(itemAt(QRect(700, 0, 24, 24)));
        QTest::qWait(150); // longer than the delay of a dismissal
        QVERIFY(m_window->isPresented());
        field.setParent(nullptr);
    }

    void itOpensAgainWhileItFadesOut() {
        m_reduceMotion.set(false);
        present(itemAt(QRect(700, 0, 24, 24)));
        m_window->dismiss();
        present(itemAt(QRect(100, 0, 24, 24)));
        QVERIFY(m_window->isPresented());
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(6, 30, 340, 400), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(m_window->windowOpacity(), 1.0, kPatience);
        QVERIFY(hasKeyboard());
        QCOMPARE(m_dismissals, 1);
    }

    void itStaysAboveOtherWindows() {
        present(itemAt(QRect(700, 0, 24, 24)));
        QTRY_COMPARE_WITH_TIMEOUT(pixel(QPoint(712, 200)), kBackground, kPatience);
        Other other(QRect(400, 0, 600, 600));
        other.setAttribute(Qt::WA_ShowWithoutActivating);
        other.show();
        other.raise();
        QVERIFY(QTest::qWaitForWindowExposed(&other));
        QTRY_COMPARE_WITH_TIMEOUT(pixel(QPoint(450, 200)), kBehind, kPatience);
        QCOMPARE(pixel(QPoint(712, 200)), kBackground);
        QVERIFY(m_window->isPresented());
    }

    void windowManagersAndBarsKnowWhatItIs() {
        for (int time = 0; time < 2; ++time) { // each time it has another native window
            present(itemAt(QRect(700, 0, 24, 24)));
            const QByteArray properties = propertiesOf(
                m_window->winId(),
                {QStringLiteral("_NET_WM_STATE"), QStringLiteral("_NET_WM_WINDOW_TYPE"),
                 QStringLiteral("WM_TRANSIENT_FOR"), QStringLiteral("_NET_WM_ICON")});
            QVERIFY2(properties.contains("_NET_WM_STATE_SKIP_TASKBAR"), properties);
            QVERIFY2(properties.contains("_NET_WM_STATE_SKIP_PAGER"), properties);
            QVERIFY2(properties.contains("_NET_WM_STATE_ABOVE"), properties);
            QVERIFY2(!properties.contains("_NET_WM_STATE_STAYS_ON_TOP"), properties); // KDE's own
            QVERIFY2(properties.contains("= _NET_WM_WINDOW_TYPE_UTILITY\n"), properties);
            QVERIFY2(properties.contains("WM_TRANSIENT_FOR:  not found"), properties);
            QVERIFY2(properties.contains("_NET_WM_ICON(CARDINAL)"), properties);
            m_window->dismiss();
        }
    }

    void presentedAgainItComesToTheFrontWhereItIs() {
        present(itemAt(QRect(700, 0, 24, 24)));
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(542, 30, 340, 400), kPatience);
        Other other(QRect(400, 0, 600, 600));
        // The panel stays above the ordinary windows of its own process.
        other.setWindowFlags(other.windowFlags() | Qt::Tool | Qt::WindowStaysOnTopHint);
        other.setAttribute(Qt::WA_ShowWithoutActivating);
        other.show();
        other.raise();
        QTRY_COMPARE_WITH_TIMEOUT(pixel(QPoint(712, 200)), kBehind, kPatience);
        // Without a place the panel stays where the first call put it.
        m_window->present(std::nullopt);
        QTRY_COMPARE_WITH_TIMEOUT(pixel(QPoint(712, 200)), kBackground, kPatience);
        QVERIFY(hasKeyboard());
        m_content->setHint(QSize(340, 500));
        QTRY_COMPARE_WITH_TIMEOUT(place(), QRect(542, 30, 340, 500), kPatience);
        QCOMPARE(m_dismissals, 0);
    }

    void itAsksForTheKeyboardAtThePresentTime() {
        RootMessages messages;
        present(std::nullopt);
        // Qt sends a request of its own, too, as an application and with the time of the last
        // event.
        std::uint32_t time = XCB_TIME_CURRENT_TIME;
        const auto hasAskedAsTheUser = [&] {
            for (const QByteArray& request : messages.take({"_NET_ACTIVE_WINDOW"})) {
                std::array<std::uint32_t, 2> sourceAndTime{};
                std::memcpy(sourceAndTime.data(), request.constData(), sizeof sourceAndTime);
                time = sourceAndTime[0] == 2 ? sourceAndTime[1] : time;
            }
            return time != XCB_TIME_CURRENT_TIME;
        };
        QTRY_VERIFY_WITH_TIMEOUT(hasAskedAsTheUser(), kPatience);
    }

    void itTakesTheKeyboardFromAnotherProgramAndReturnsIt() {
        // The user works in another program and then opens the panel.
        QProcess editor;
        editor.start(QStringLiteral("xev"),
                     {QStringLiteral("-geometry"), QStringLiteral("300x300+20+20")});
        QVERIFY(editor.waitForStarted());
        const xcb_window_t before = m_x.focus();
        QTRY_VERIFY_WITH_TIMEOUT(m_x.focus() != before, kPatience);
        click(QPoint(150, 150));
        const xcb_window_t editing = m_x.focus();
        present(std::nullopt);
        m_window->dismiss();
        // Closing the panel returns the keyboard to that program.
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), editing, kPatience);
        editor.kill();
        QVERIFY(editor.waitForFinished());
    }
};

BRIMLET_TEST(TestX11MenuWindow, QApplication)
#include "tst_x11menuwindow.moc"
