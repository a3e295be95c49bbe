#include "platform/linux/x11overlaywindow.h"
#include "platform/linux/x11watch.h"
#include "platform/textstrip.h"
#include "tests/support/emulated.h"
#include "tests/support/paintcounter.h"
#include "tests/support/testprogram.h"
#include "tests/support/windowproperties.h"
#include "tests/support/xserver.h"
#include "tests/support/xsynchronise.h"

#include <QApplication>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include <algorithm>
#include <cstdlib>
#include <span>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
constexpr QRect kPanel(542, 0, 428, 40);

/// A window of another program.
enum class Other {
    Managed,        ///< By the window manager.
    Unmanaged,      ///< Override-redirect, like a menu or a locked screen.
    UnmanagedFrame, ///< The override-redirect frame that some window managers put around a window.
    InputOnly,      ///< Override-redirect and invisible.
};
constexpr QRect kWholeScreen(0, 0, 1512, 982);

/// Another X client with windows on the same screen.
class OtherClient final {
public:
    OtherClient()
        : m_x(xcb_connect(nullptr, nullptr))
        , m_root(xcb_setup_roots_iterator(xcb_get_setup(m_x)).data->root) {}
    ~OtherClient() { xcb_disconnect(m_x); }
    OtherClient(const OtherClient&) = delete;
    OtherClient& operator=(const OtherClient&) = delete;

    /// Shows a window, above all others.
    xcb_window_t show(Other kind, const QRect& area = kWholeScreen) {
        const xcb_window_t window = create(m_root, kind, area);
        if (kind == Other::UnmanagedFrame) {
            const xcb_window_t client = create(window, Other::Managed, area);
            const xcb_atom_t state = atom("WM_STATE");
            const std::uint32_t normal = 1;
            xcb_change_property(m_x, XCB_PROP_MODE_REPLACE, client, state, state, 32, 1, &normal);
            xcb_map_window(m_x, client);
        }
        xcb_map_window(m_x, window);
        raise(window);
        return window;
    }
    void raise(xcb_window_t window) {
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(m_x, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        synchronise(m_x);
    }
    void destroy(xcb_window_t window) {
        xcb_destroy_window(m_x, window);
        synchronise(m_x);
    }
    /// Whether the first of the two windows is visible and, with its frame, above the second.
    [[nodiscard]] bool isAbove(xcb_window_t first, xcb_window_t second) {
        const std::vector<xcb_window_t> fromBelow = childrenOf(m_root);
        return isViewable(first) &&
               std::find(fromBelow.begin(), fromBelow.end(), topLevelOf(first)) >
                   std::find(fromBelow.begin(), fromBelow.end(), topLevelOf(second));
    }
    /// Takes or gives up the compositor's selection.
    void actAsCompositor(bool isOne) {
        if (m_owner == XCB_WINDOW_NONE) {
            m_owner = xcb_generate_id(m_x);
            xcb_create_window(m_x, XCB_COPY_FROM_PARENT, m_owner, m_root, 0, 0, 1, 1, 0,
                              XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        }
        xcb_set_selection_owner(m_x, isOne ? m_owner : xcb_window_t{XCB_WINDOW_NONE},
                                atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        synchronise(m_x);
    }

private:
    xcb_window_t create(xcb_window_t parent, Other kind, const QRect& area) {
        const xcb_window_t window = xcb_generate_id(m_x);
        const std::uint32_t isUnmanaged = kind == Other::Managed ? 0 : 1;
        xcb_create_window(
            m_x, XCB_COPY_FROM_PARENT, window, parent, static_cast<std::int16_t>(area.x()),
            static_cast<std::int16_t>(area.y()), static_cast<std::uint16_t>(area.width()),
            static_cast<std::uint16_t>(area.height()), 0,
            kind == Other::InputOnly ? XCB_WINDOW_CLASS_INPUT_ONLY : XCB_WINDOW_CLASS_INPUT_OUTPUT,
            XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &isUnmanaged);
        return window;
    }
    [[nodiscard]] xcb_atom_t atom(const char* name) {
        const XcbOwned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            m_x, xcb_intern_atom(m_x, 0, static_cast<std::uint16_t>(qstrlen(name)), name),
            nullptr));
        return reply->atom;
    }
    [[nodiscard]] std::vector<xcb_window_t> childrenOf(xcb_window_t window) {
        const XcbOwned<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(m_x, xcb_query_tree(m_x, window), nullptr));
        const std::span children(xcb_query_tree_children(tree.get()), tree->children_len);
        return {children.begin(), children.end()};
    }
    [[nodiscard]] xcb_window_t topLevelOf(xcb_window_t window) {
        const XcbOwned<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(m_x, xcb_query_tree(m_x, window), nullptr));
        return !tree || tree->parent == m_root ? window : topLevelOf(tree->parent);
    }
    [[nodiscard]] bool isViewable(xcb_window_t window) {
        const XcbOwned<xcb_get_window_attributes_reply_t> reply(
            xcb_get_window_attributes_reply(m_x, xcb_get_window_attributes(m_x, window), nullptr));
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    xcb_connection_t* m_x;
    xcb_window_t m_root;
    xcb_window_t m_owner = XCB_WINDOW_NONE;
};

/// A picture whose columns differ, and are none of the window's colours.
QImage columns(int width, int height, int first = 0) {
    QImage picture(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int x = 0; x < width; ++x) {
        const int number = first + x;
        QPainter(&picture).fillRect(x, 0, 1, height, QColor(number % 256, 90, 100 + number / 256));
    }
    return picture;
}

/// These columns of it, as they are on the screen.
QImage part(const QImage& picture, int from, int width) {
    return picture.copy(from, 0, width, picture.height()).convertToFormat(QImage::Format_RGB32);
}

QPainterPath box(const QRectF& edges) {
    QPainterPath outline;
    outline.addRect(edges);
    return outline;
}

/// The number of X requests that the action sends, from their sequence numbers.
template <typename Action>
unsigned requestsOf(const Action& action) {
    xcb_connection_t* const x = xcbConnectionOfQt();
    const unsigned before = xcb_no_operation(x).sequence;
    action();
    return xcb_no_operation(x).sequence - before - 1;
}

/// Covers the whole content, and collects what its paint events are for.
class OpaqueChild final : public QWidget {
public:
    explicit OpaqueChild(QWidget* parent)
        : QWidget(parent) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        resize(kPanel.size());
    }
    QRegion painted;

protected:
    void paintEvent(QPaintEvent* event) override { painted += event->region(); }
};

} // namespace

/// Which requests the overlay's window sends to the X server, and which events it follows. Without
/// a window manager, so that windows stay where the tests put them.
class TestX11OverlayWindow final : public QObject {
    Q_OBJECT

    XServer m_x;
    OtherClient m_other;

    /// As the panel does for each reply.
    static void render(X11OverlayWindow& window) {
        window.setFrame({kPanel.x() + 0.0, 982.0 - kPanel.height(), kPanel.width() + 0.0,
                         kPanel.height() + 0.0});
        window.orderFrontRegardless();
        window.setIgnoresMouseEvents(false);
    }
    static std::unique_ptr<X11OverlayWindow> makeWindow(bool isFitted = false) {
        auto window = std::make_unique<X11OverlayWindow>(
            std::make_unique<QWidget>(), [] { return QRectF(0, 0, 1512, 982); }, isFitted);
        window->setRegions(box({8, 4, 108, 24}), box({8, 4, 108, 24}));
        return window;
    }
    /// Shown, and everything that follows from that is done.
    [[nodiscard]] bool isAtRest(X11OverlayWindow& window) const {
        render(window);
        const auto rests = [&] {
            return requestsOf([&] {
                       QCoreApplication::processEvents();
                       render(window);
                   }) == 0;
        };
        return QTest::qWaitForWindowExposed(&window) && m_x.isMapped(idOf(window)) &&
               QTest::qWaitFor(rests, kPatience);
    }
    /// Whether the window is above the other one after the next renders, which have processed all
    /// of the X server's events.
    [[nodiscard]] bool isAboveAfterRendering(X11OverlayWindow& window, xcb_window_t other) {
        const bool isResting = isAtRest(window);
        synchronise(xcbConnectionOfQt());
        return isResting && m_other.isAbove(idOf(window), other);
    }
    static xcb_window_t idOf(const QWidget& window) {
        return static_cast<xcb_window_t>(window.windowHandle()->winId());
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void anUnchangedRenderSendsNoRequest() {
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        QCOMPARE(requestsOf([&] {
                     for (int i = 0; i < 10; ++i) {
                         render(*window);
                     }
                 }),
                 0U);
    }

    void itNamesNoParent() {
        const auto window = makeWindow();
        for (int time = 0; time < 2; ++time) {
            QVERIFY(isAtRest(*window));
            QVERIFY(propertiesOf(idOf(*window), {QStringLiteral("WM_TRANSIENT_FOR")})
                        .endsWith("not found.\n"));
            window->orderOut();
            window->orderFrontRegardless();
        }
    }

    void changedRegionsAreSent() {
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        window->setRegions(box({312, 4, 108, 24}), box({312, 4, 108, 24}));
        QTRY_COMPARE_WITH_TIMEOUT(m_x.inputShape(idOf(*window)),
                                  std::vector<QRect>{QRect(312, 4, 108, 24)}, kPatience);
        window->setIgnoresMouseEvents(true);
        QTRY_VERIFY_WITH_TIMEOUT(m_x.inputShape(idOf(*window)).empty(), kPatience);
    }

    void edgesBetweenTwoPixelsAreRounded() {
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        window->setRegions(box({8.4, 4, 108, 24}), {});
        QTRY_COMPARE_WITH_TIMEOUT(m_x.inputShape(idOf(*window)),
                                  std::vector<QRect>{QRect(8, 4, 108, 24)}, kPatience);
        window->setRegions(box({8.5, 4, 108, 24}), {});
        QTRY_COMPARE_WITH_TIMEOUT(m_x.inputShape(idOf(*window)),
                                  std::vector<QRect>{QRect(9, 4, 108, 24)}, kPatience);
    }

    void aFittedWindowCoversNoMoreThanIsPainted() {
        const auto window = makeWindow(true);
        QVERIFY(isAtRest(*window));
        const xcb_window_t id = idOf(*window);
        const auto* const content = window->findChild<QWidget*>();
        QTRY_COMPARE_WITH_TIMEOUT(m_x.geometry(id), QRect(550, 4, 108, 24), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.inputShape(id), std::vector<QRect>{QRect(0, 0, 108, 24)},
                                  kPatience);
        QCOMPARE(content->size(), kPanel.size());
        QCOMPARE(content->mapToGlobal(QPoint()), kPanel.topLeft());
        // Another capsule appears, which cannot be clicked.
        QPainterPath both = box({8, 4, 108, 24});
        both.addPath(box({312.5, 4, 36, 24}));
        window->setRegions(box({8, 4, 108, 24}), both);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.geometry(id), QRect(550, 4, 341, 24), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.inputShape(id), std::vector<QRect>{QRect(0, 0, 108, 24)},
                                  kPatience);
        QCOMPARE(content->mapToGlobal(QPoint()), kPanel.topLeft());
        // The first one goes.
        window->setRegions({}, box({312.5, 4, 36, 24}));
        QTRY_COMPARE_WITH_TIMEOUT(m_x.geometry(id), QRect(854, 4, 37, 24), kPatience);
        QCOMPARE(content->mapToGlobal(QPoint()), kPanel.topLeft());
        // A window has at least one point.
        window->setRegions({}, {});
        QTRY_COMPARE_WITH_TIMEOUT(m_x.geometry(id).size(), QSize(1, 1), kPatience);
        QVERIFY(isAtRest(*window));
    }

    void aTextIsCopiedToItsPlaceWithoutPainting() {
        const auto window = makeWindow(true);
        QVERIFY(isAtRest(*window));
        const QPoint origin = kPanel.topLeft() + QPoint(8, 4);
        const QRgb before = m_x.pixel(origin + QPoint(92, 10)).rgb();
        const QImage picture = columns(2048, 12);
        const QImage other = columns(300, 12);
        const QList<TextStrip> texts{{{12, 4, 40, 12}, picture, 0}, {{60, 4, 30, 12}, other, 2}};
        window->showTexts(texts);
        const auto left = [&] { return m_x.picture({origin + QPoint(12, 4), QSize(40, 12)}); };
        const auto right = [&] { return m_x.picture({origin + QPoint(60, 4), QSize(30, 12)}); };
        QTRY_COMPARE_WITH_TIMEOUT(left(), part(picture, 0, 40), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(right(), part(other, 2, 30), kPatience);
        QVERIFY(m_x.pixel(origin + QPoint(11, 4)).rgb() != picture.pixel(0, 0));
        QCOMPARE(m_x.pixel(origin + QPoint(92, 10)).rgb(), before);
        // From the second time on, a step is one request for each text.
        const PaintCounter paints(*qApp);
        QList<TextStrip> moved = texts;
        for (int i = 1; i <= 10; ++i) {
            moved[0].from = i * 200;
            moved[1].from = i;
            QCOMPARE(requestsOf([&] { window->showTexts(moved); }), 2U);
        }
        QCOMPARE(paints.paints, 0);
        QTRY_COMPARE_WITH_TIMEOUT(left(), part(picture, 2000, 40), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(right(), part(other, 10, 30), kPatience);
    }

    void anotherPictureReplacesTheOneBefore() {
        const auto window = makeWindow(true);
        QVERIFY(isAtRest(*window));
        const QRect box(12, 4, 40, 12);
        for (int i = 0; i < 5; ++i) {
            const QImage picture = columns(200, 12, i * 20);
            window->showTexts(std::array{TextStrip{box, picture, 7}});
            const QPoint place = kPanel.topLeft() + QPoint(8, 4) + box.topLeft();
            QTRY_COMPARE_WITH_TIMEOUT(m_x.picture({place, box.size()}), part(picture, 7, 40),
                                      kPatience);
        }
        // A line without room for its text.
        QCOMPARE(requestsOf([&] { window->showTexts(std::array{TextStrip()}); }), 0U);
    }

    void aHiddenWindowKeepsNoPictureOnTheServer() {
        const auto window = makeWindow(true);
        QVERIFY(isAtRest(*window));
        const QList<TextStrip> text{{{12, 4, 40, 12}, columns(200, 12), 0}};
        window->showTexts(text);
        QCOMPARE(requestsOf([&] { window->showTexts(text); }), 1U);
        window->orderOut();
        QVERIFY(isAtRest(*window));
        QCOMPARE_GT(requestsOf([&] { window->showTexts(text); }), 1U);
    }

    void aTextIsCopiedIntoANewNativeWindow() {
        const auto window = makeWindow(true);
        QVERIFY(isAtRest(*window));
        const QRect box(12, 4, 40, 12);
        const QImage picture = columns(200, 12);
        const std::array text{TextStrip{box, picture, 7}};
        window->showTexts(text);
        window->windowHandle()->destroy();
        window->windowHandle()->create();
        window->showTexts(text); // not into the one that is gone, which would be an error
        render(*window);
        window->windowHandle()->setVisible(true);
        window->showTexts(text);
        QCOMPARE(requestsOf([&] { window->showTexts(text); }), 1U);
    }

    void aWindowOfAnotherDepthIsNotCopiedInto() {
        const QList<TextStrip> text{{{12, 4, 40, 12}, columns(200, 12), 0}};
        X11TextStrips strips;
        QVERIFY(!strips.show(text)); // no window
        const xcb_window_t other = m_other.show(Other::Unmanaged, QRect(0, 600, 100, 40));
        strips.setWindow(other);
        QVERIFY(!strips.show(text));
        m_other.destroy(other);
    }

    void whatIsExposedIsPaintedAnew() {
        const auto window = makeWindow(true);
        QVERIFY(isAtRest(*window));
        const QRect box(12, 4, 40, 12);
        const QRect place = box.translated(kPanel.topLeft() + QPoint(8, 4));
        const QImage before = m_x.picture(place);
        const QImage picture = columns(200, 12);
        window->showTexts(std::array{TextStrip{box, picture, 0}});
        QTRY_VERIFY_WITH_TIMEOUT(m_x.picture(place) != before, kPatience);
        const PaintCounter paints(*qApp);
        constexpr std::uint8_t kExposes = 1;
        xcb_clear_area(xcbConnectionOfQt(), kExposes, idOf(*window), 0, 0, 0, 0);
        xcb_flush(xcbConnectionOfQt());
        QTRY_VERIFY_WITH_TIMEOUT(paints.paints > 0, kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.picture(place), before, kPatience);
    }

    void aNewNativeWindowIsShapedAgain() {
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        const WId before = window->winId();
        window->windowHandle()->destroy();
        window->windowHandle()->create();
        render(*window);
        QVERIFY(window->winId() != before);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.inputShape(idOf(*window)),
                                  std::vector<QRect>{QRect(8, 4, 108, 24)}, kPatience);
    }

    void itComesForwardAboveManagedWindowsOnly_data() {
        QTest::addColumn<Other>("kind");
        QTest::addColumn<QRect>("area");
        QTest::addColumn<bool>("overtakes");
        QTest::addColumn<bool>("appearsAbove");
        const QRect beside(0, 500, 400, 100);
        QTest::newRow("a managed window") << Other::Managed << kWholeScreen << true << true;
        QTest::newRow("its frame, itself unmanaged")
            << Other::UnmanagedFrame << kWholeScreen << true << true;
        QTest::newRow("a menu") << Other::Unmanaged << QRect(600, 0, 200, 300) << false << false;
        QTest::newRow("a locked screen") << Other::Unmanaged << kWholeScreen << false << false;
        QTest::newRow("a menu elsewhere") << Other::Unmanaged << beside << false << true;
        QTest::newRow("an invisible one") << Other::InputOnly << kWholeScreen << false << true;
    }
    void itComesForwardAboveManagedWindowsOnly() {
        QFETCH(const Other, kind);
        QFETCH(const QRect, area);
        QFETCH(const bool, overtakes);
        QFETCH(const bool, appearsAbove);
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        const xcb_window_t other = m_other.show(kind, area);
        QVERIFY(m_other.isAbove(other, idOf(*window)));
        QCOMPARE(isAboveAfterRendering(*window, other), overtakes);
        m_other.raise(other);
        QVERIFY(m_other.isAbove(other, idOf(*window)));
        QCOMPARE(isAboveAfterRendering(*window, other), overtakes);
        // Raised while the overlay was out.
        window->orderOut();
        m_other.raise(other);
        QCOMPARE(isAboveAfterRendering(*window, other), appearsAbove);
        // The first time it is shown.
        const auto later = makeWindow();
        QCOMPARE(isAboveAfterRendering(*later, other), appearsAbove);
        m_other.destroy(other);
    }

    // As the capsules are, whose pictures arrive late.
    void anUpdateReachesAnOpaqueChild() {
        auto content = std::make_unique<QWidget>();
        auto* const child = new OpaqueChild(content.get());
        child->move(8, 4);
        X11OverlayWindow window(std::move(content), [] { return QRectF(0, 0, 1512, 982); });
        QVERIFY(isAtRest(window));
        child->painted = {};
        window.updateContent(QRect(20, 10, 30, 5));
        QTRY_COMPARE_WITH_TIMEOUT(child->painted, QRegion(12, 6, 30, 5), kPatience);
    }

    void itIsBetweenManagedWindowsAndAMenu() {
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        const xcb_window_t film = m_other.show(Other::Managed);
        QVERIFY(m_other.isAbove(film, idOf(*window)));
        const xcb_window_t menu = m_other.show(Other::Unmanaged, {600, 0, 200, 300});
        QVERIFY(isAboveAfterRendering(*window, film));
        QVERIFY(m_other.isAbove(menu, idOf(*window)));
        m_other.destroy(menu);
        m_other.destroy(film);
    }

    void windowsOfThisProgramDoNotMoveIt() {
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        QWidget tip(nullptr, Qt::ToolTip | Qt::BypassWindowManagerHint);
        tip.setGeometry(kPanel);
        tip.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tip));
        QVERIFY(!isAboveAfterRendering(*window, idOf(tip)));
        window->raise();
        QVERIFY(isAboveAfterRendering(*window, idOf(tip)));
    }

    void itIsCutToThePaintedRegionOnlyWithoutACompositor() {
        X11Watch& watch = X11Watch::shared();
        m_other.actAsCompositor(false);
        QTRY_VERIFY_WITH_TIMEOUT(!watch.hasCompositor(), kPatience);
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        QTRY_COMPARE_WITH_TIMEOUT(m_x.boundingShape(idOf(*window)),
                                  std::vector<QRect>{QRect(8, 4, 108, 24)}, kPatience);
        window->setRegions({}, box({8.5, 4, 108, 24}));
        QTRY_COMPARE_WITH_TIMEOUT(m_x.boundingShape(idOf(*window)),
                                  std::vector<QRect>{QRect(9, 4, 108, 24)}, kPatience);
        window->setRegions({}, {});
        QTRY_VERIFY_WITH_TIMEOUT(m_x.boundingShape(idOf(*window)).empty(), kPatience);
        m_other.actAsCompositor(true);
        QTRY_VERIFY_WITH_TIMEOUT(watch.hasCompositor(), kPatience);
        render(*window);
        QTRY_COMPARE_WITH_TIMEOUT(m_x.boundingShape(idOf(*window)),
                                  std::vector<QRect>{QRect(QPoint(), kPanel.size())}, kPatience);
    }

    void itKeepsItsPlaceWhenItsMonitorIsGone() {
        const auto window = makeWindow();
        QVERIFY(isAtRest(*window));
        const xcb_window_t id = idOf(*window);
        const QRect place = m_x.geometry(id);
        // The lid is closed; the desktop goes on with an external display in the same place.
        const auto setMonitors = [](const char* gone, const QStringList& added) {
            QStringList arguments{QStringLiteral("--delmonitor"), QString::fromLatin1(gone),
                                  QStringLiteral("--setmonitor")};
            QCOMPARE(QProcess::execute(QStringLiteral("xrandr"), arguments + added), 0);
            QTRY_COMPARE_WITH_TIMEOUT(QGuiApplication::screens().size(), 1, kPatience);
            QTRY_COMPARE_WITH_TIMEOUT(QGuiApplication::primaryScreen()->name(), added.constFirst(),
                                      kPatience);
        };
        setMonitors("eDP-1", {QStringLiteral("HDMI-1"), QStringLiteral("1200/300x900/200+0+0"),
                              QStringLiteral("screen")});
        window->orderFrontRegardless(); // as after the next poll
        QCoreApplication::processEvents();
        QCOMPARE(idOf(*window), id);
        QVERIFY(m_x.isMapped(id));
        QCOMPARE(m_x.geometry(id), place);
        setMonitors("HDMI-1",
                    {QStringLiteral("eDP-1"), QStringLiteral("auto"), QStringLiteral("screen")});
        QVERIFY(m_x.isMapped(id));
        QCOMPARE(m_x.geometry(id), place);
    }
};

BRIMLET_TEST(TestX11OverlayWindow, QApplication)
#include "tst_x11overlaywindow.moc"
