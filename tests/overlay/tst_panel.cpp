#include "overlay/overlaypanel.h"
#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

OverlayPanel makePanel(HostFixture& host, FakeOverlayWindow::Record& window) {
    return OverlayPanel({host.screens, host.workspace, [&window](OverlayRuntime&) {
                             return std::make_unique<FakeOverlayWindow>(window);
                         }});
}

const QString kFrame = QStringLiteral("frame");
const QString kFront = QStringLiteral("front");
const QString kOut = QStringLiteral("out");
const QString kIgnores = QStringLiteral("ignores on");
const QString kAccepts = QStringLiteral("ignores off");

} // namespace

class TestPanel final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aNewPanelIsPlacedButNotShown() {
        HostFixture host;
        FakeOverlayWindow::Record window;
        const OverlayPanel panel = makePanel(host, window);
        QCOMPARE(window.calls, (QStringList{kIgnores, kFrame}));
        QCOMPARE(window.frame, (Rect{756 - 214, 942, 428, 40}));
        QVERIFY(!window.isShown);
    }

    void visibleAdsOrderItFrontBeforeItTakesClicks() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        FakeOverlayWindow::Record window;
        OverlayPanel panel = makePanel(host, window);
        window.calls.clear();
        panel.render(*store);
        QCOMPARE(window.calls, (QStringList{kFrame, kFront, kAccepts}));
        QVERIFY(panel.runtime().visible());
        QVERIFY(panel.isShown());
    }

    void hiddenAdsMakeItIgnoreClicksBeforeItIsOrderedOut() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        FakeOverlayWindow::Record window;
        OverlayPanel panel = makePanel(host, window);
        panel.render(*store);
        store->pause24h();
        window.calls.clear();
        panel.render(*store);
        QCOMPARE(window.calls, (QStringList{kFrame, kIgnores, kOut}));
        QVERIFY(!panel.isShown());
    }

    void withoutANotchItIsOrderedOutAndOtherwiseUnchanged() {
        HostFixture host;
        const auto notched = makeLiveStore(host);
        FakeOverlayWindow::Record window;
        OverlayPanel panel = makePanel(host, window);
        panel.render(*notched);
        QVERIFY(window.isShown && !window.ignoresMouseEvents);
        // A store that was created without a notch.
        host.screens.set({}, {});
        const auto plain = host.makeStore();
        host.screens.set({notchedScreen(1)}, {1});
        // All else that ads need; such a store sends no request that could bring it.
        const_cast<Assignment&>(plain->assignment()) = notched->assignment();
        QCOMPARE(plain->assignment().weekStatus, QStringLiteral("live"));
        QVERIFY(notched->adsVisible() && !plain->adsVisible());
        window.calls.clear();
        panel.render(*plain);
        QCOMPARE(window.calls, QStringList{kOut});
        QVERIFY(!window.isShown);
        QVERIFY(!panel.isShown());
        QVERIFY(!window.ignoresMouseEvents);
    }

    void aGapOfTwelvePointsGivesANotchOfTwentyAndAPanelOf264() {
        HostFixture host;
        Screen narrow = notchedScreen(1);
        narrow.auxiliaryTopLeftArea = Rect{0, 950, 750, 32};
        narrow.auxiliaryTopRightArea = Rect{762, 950, 750, 32};
        const auto store = makeLiveStore(host);
        host.screens.set({narrow}, {1});
        FakeOverlayWindow::Record window;
        OverlayPanel panel = makePanel(host, window);
        panel.render(*store);
        QCOMPARE(panel.runtime().notchWidth(), 20.0);
        QCOMPARE(window.frame.width, 264.0);
    }

    void everyRenderMeasuresTheNotchAndPlacesTheWindow() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        FakeOverlayWindow::Record window;
        OverlayPanel panel = makePanel(host, window);
        panel.render(*store);
        Screen moved = notchedScreen(1);
        moved.frame = {0, 0, 1728, 1117};
        moved.auxiliaryTopLeftArea = Rect{0, 1079, 764, 38};
        moved.auxiliaryTopRightArea = Rect{964, 1079, 764, 38};
        host.screens.set({moved}, {1});
        panel.render(*store);
        QCOMPARE(window.frame, (Rect{864 - 222, 1117 - 46, 444, 46}));
        QCOMPARE(panel.runtime().notchWidth(), 200.0);
        QCOMPARE(panel.runtime().notchHeight(), 38.0);
    }

    void theBuiltInScreenMayBeTheSecondOne() {
        HostFixture host;
        Screen external;
        external.number = 9;
        external.frame = {0, 0, 2560, 1440};
        Screen own = notchedScreen(1);
        own.frame = {2560, 300, 1512, 982};
        own.auxiliaryTopLeftArea = Rect{2560, 1250, 664, 32};
        own.auxiliaryTopRightArea = Rect{3408, 1250, 664, 32};
        host.screens.set({external, own}, {1});
        FakeOverlayWindow::Record window;
        const OverlayPanel panel = makePanel(host, window);
        QCOMPARE(window.frame, (Rect{2560 + 756 - 214, 1282 - 40, 428, 40}));
    }

    void whenTheBuiltInScreenGoesTheFrameStays() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        FakeOverlayWindow::Record window;
        OverlayPanel panel = makePanel(host, window);
        panel.render(*store);
        const Rect before = window.frame;
        host.screens.set({}, {});
        window.calls.clear();
        panel.render(*store);
        QCOMPARE(window.frame, before);
        QCOMPARE(window.calls, (QStringList{kFront, kAccepts}));
        QCOMPARE(panel.runtime().notchWidth(), 180.0);
    }

    void onABuiltInScreenWithoutStripsItIsAtTheTopCentre() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        FakeOverlayWindow::Record window;
        OverlayPanel panel = makePanel(host, window);
        Screen plain = notchedScreen(1);
        plain.auxiliaryTopLeftArea.reset();
        plain.auxiliaryTopRightArea.reset();
        host.screens.set({plain}, {1});
        panel.render(*store);
        QCOMPARE(window.frame, (Rect{756 - 212, 942, 424, 40}));
    }

    void aNotchLowerThanTwentyTwoIsPublishedAsTwentyTwo() {
        HostFixture host;
        Screen low = notchedScreen(1);
        low.auxiliaryTopLeftArea = Rect{0, 964, 664, 18};
        low.auxiliaryTopRightArea = Rect{848, 964, 664, 18};
        host.screens.set({low}, {1});
        const auto store = makeLiveStore(host);
        FakeOverlayWindow::Record window;
        OverlayPanel panel = makePanel(host, window);
        panel.render(*store);
        QCOMPARE(panel.runtime().notchHeight(), 22.0);
        QCOMPARE(window.frame.height, 32.0);
    }
};

BRIMLET_TEST(TestPanel, QCoreApplication)
#include "tst_panel.moc"
