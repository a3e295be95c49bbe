#import "platform/mac/macmenuwindow.h"
#import "platform/mac/nativepanel.h"
#include "tests/support/fakes.h"
#include "tests/support/plaincorners.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QScreen>
#include <QTest>

using namespace brimlet;

namespace {

class Content final : public QWidget {
public:
    [[nodiscard]] QSize sizeHint() const override { return m_size; }
    void resizeHint(QSize size) {
        m_size = size;
        updateGeometry();
    }

private:
    QSize m_size{300, 200};
};

} // namespace

/// Shows a panel for a moment, and it takes the keyboard.
class TestMacMenuWindow final : public QObject {
    Q_OBJECT

    /// In the menu bar of the first screen, in the middle.
    [[nodiscard]] static Rect item() {
        const QSizeF screen = QGuiApplication::primaryScreen()->size();
        return {screen.width() / 2, screen.height() - 24, 30, 24};
    }

    Content* m_content = nullptr;
    FakeReduceMotion m_reduceMotion;
    std::optional<MacMenuWindow> m_window;
    int m_dismissals = 0;

    [[nodiscard]] NSView* view() const { return viewOf(*m_content->window()); }
    [[nodiscard]] NSWindow* panel() const { return view().window; }

private Q_SLOTS:
    void init() {
        auto content = std::make_unique<Content>();
        m_content = content.get();
        m_window.emplace(std::move(content), m_reduceMotion, plainCorners);
        m_dismissals = 0;
        m_window->observeDismissals([this] { ++m_dismissals; });
    }
    void cleanup() { m_window.reset(); }

    void itIsHiddenAtFirst() {
        QVERIFY(!m_window->isPresented());
        QVERIFY(!panel().visible);
        QVERIFY(!panel().keyWindow);
    }

    void itFadesUnlessMotionIsReduced() {
        m_window->present(item());
        QCOMPARE(panel().animationBehavior, NSWindowAnimationBehaviorUtilityWindow);
        m_window->dismiss();
        m_reduceMotion.set(true);
        m_window->present(item());
        QCOMPARE(panel().animationBehavior, NSWindowAnimationBehaviorNone);
        m_reduceMotion.set(false);
    }

    void presentedItIsInFrontAndHasTheKeyboard() {
        m_window->present(item());
        QVERIFY(m_window->isPresented());
        QVERIFY(panel().visible);
        QTRY_VERIFY(panel().keyWindow);
        QVERIFY(!panel().canBecomeMainWindow);
        QVERIFY(panel().firstResponder == view());
        QVERIFY(panel().hasShadow);
        QVERIFY(!panel().ignoresMouseEvents);
        QCOMPARE(panel().collectionBehavior,
                 NSWindowCollectionBehavior(NSWindowCollectionBehaviorMoveToActiveSpace |
                                            NSWindowCollectionBehaviorFullScreenAuxiliary |
                                            NSWindowCollectionBehaviorIgnoresCycle));
        QVERIFY(!panel().hidesOnDeactivate);
        QCOMPARE(m_dismissals, 0);
    }

    void itSpansItsContentBelowTheItem() {
        m_window->present(item());
        const Rect frame = rectFrom(panel().frame);
        QCOMPARE(frame.width, 300.0);
        QCOMPARE(frame.height, 200.0);
        QVERIFY(frame.y + frame.height <= item().y);
        Rect beside = item();
        beside.x -= 100;
        m_window->follow(beside);
        QCOMPARE(rectFrom(panel().frame), (Rect{frame.x - 100, frame.y, 300, 200}));
        QCOMPARE(m_dismissals, 0);
    }

    void itGrowsWithItsContent() {
        m_window->present(item());
        m_content->resizeHint({300, 260});
        QTRY_COMPARE(rectFrom(panel().frame).height, 260.0);
    }

    void followingWhileHiddenShowsNothing() {
        m_window->follow(item());
        QVERIFY(!panel().visible);
    }

    void dismissingHidesItAndReportsItOnce() {
        m_window->present(item());
        m_window->dismiss();
        QVERIFY(!m_window->isPresented());
        QVERIFY(!panel().visible);
        QVERIFY(panel().firstResponder != view());
        QCOMPARE(m_dismissals, 1);
        m_window->dismiss();
        QCOMPARE(m_dismissals, 1);
    }

    void losingTheKeyboardHidesItAndReportsItOnce() {
        m_window->present(item());
        [NSNotificationCenter.defaultCenter postNotificationName:NSWindowDidResignKeyNotification
                                                          object:panel()];
        QVERIFY(!m_window->isPresented());
        QVERIFY(!panel().visible);
        QCOMPARE(m_dismissals, 1);
    }

    void theLossOfAnotherWindowIsIgnored() {
        m_window->present(item());
        [NSNotificationCenter.defaultCenter postNotificationName:NSWindowDidResignKeyNotification
                                                          object:NSApp];
        QVERIFY(m_window->isPresented());
        QCOMPARE(m_dismissals, 0);
    }

    void itCanBePresentedAgain() {
        m_window->present(item());
        m_window->dismiss();
        m_window->present(item());
        QTRY_VERIFY(panel().keyWindow);
        QVERIFY(panel().firstResponder == view());
    }

    void escapeDismissesIt() {
        m_window->present(item());
        QTest::keyClick(m_content->window(), Qt::Key_Escape);
        QVERIFY(!m_window->isPresented());
        QCOMPARE(m_dismissals, 1);
    }

    void destroyedWhileShownItIsGoneWithoutAReport() {
        m_window->present(item());
        NSWindow* const shown = panel();
        m_window.reset();
        QVERIFY(!shown.visible);
        [NSNotificationCenter.defaultCenter postNotificationName:NSWindowDidResignKeyNotification
                                                          object:shown];
        QCOMPARE(m_dismissals, 0);
    }
};

BRIMLET_TEST(TestMacMenuWindow, QApplication)
#include "tst_macmenuwindow.moc"
