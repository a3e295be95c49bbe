#include "app/menubarextra.h"

#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

/// What opens and closes the panel, on a fake desktop.
class TestMenuBarExtra final : public QObject {
    Q_OBJECT

    /// One extra over fakes.
    struct Scene final {
        explicit Scene(bool isShown = true, StartReason reason = StartReason::ByHand) {
            item.shown = isShown;
            extra.emplace(store,
                          MenuPorts{item, host.clock,
                                    [this](const auto& its) {
                                        ++windows;
                                        storeOfWindow = its;
                                        return std::make_unique<FakeMenuWindow>(window);
                                    }},
                          reason);
        }

        HostFixture host;
        std::shared_ptr<HostStore> store = host.makeStore();
        FakeStatusItem item;
        FakeMenuWindow::Record window;
        int windows = 0;
        std::shared_ptr<HostStore> storeOfWindow;
        std::optional<MenuBarExtra> extra;
    };

private Q_SLOTS:
    void thePanelIsCreatedWhenItIsFirstOpened() {
        Scene scene;
        QCOMPARE(scene.windows, 0);
        QVERIFY(!scene.extra->isOpen());
        scene.item.press();
        QCOMPARE(scene.windows, 1);
        QVERIFY(scene.storeOfWindow == scene.store);
        QVERIFY(scene.extra->isOpen());
    }

    void aPressOpensItBesideTheItemAndAnotherClosesIt() {
        Scene scene;
        scene.item.press();
        QVERIFY(scene.window.isPresented);
        QCOMPARE(scene.window.presentations.back().value_or(Rect{}), (Rect{1400, 950, 24, 24}));
        scene.item.press();
        QVERIFY(!scene.window.isPresented);
        scene.host.clock.advance(1s);
        scene.item.press();
        QVERIFY(scene.window.isPresented);
        QCOMPARE(scene.windows, 1);
    }

    void theClickThatClosedItByTakingTheKeyboardDoesNotOpenItAgain() {
        Scene scene;
        scene.item.press();
        scene.window.window->dismiss(); // the desktop gave the keyboard to the bar
        scene.host.clock.advance(199ms);
        scene.item.press(); // and reports the click afterwards
        QVERIFY(!scene.window.isPresented);
        scene.host.clock.advance(1ms);
        scene.item.press();
        QVERIFY(scene.window.isPresented);
    }

    void aJumpOfTheWallClockChangesNothing() {
        Scene scene;
        scene.item.press();
        scene.window.window->dismiss();
        scene.host.clock.jump(-24h);
        scene.host.clock.advance(200ms);
        scene.item.press();
        QVERIFY(scene.window.isPresented);
    }

    void aSecondStartAlwaysOpensIt() {
        Scene scene;
        scene.extra->open();
        QVERIFY(scene.window.isPresented);
        scene.extra->open(); // to the front
        QVERIFY(scene.window.isPresented);
        QCOMPARE(scene.window.presentations.size(), std::size_t{2});
        scene.window.window->dismiss();
        scene.extra->open(); // at once, since this is no click
        QVERIFY(scene.window.isPresented);
    }

    void withoutThePlaceOfTheItemTheWindowChoosesOne() {
        Scene scene;
        scene.item.itsPlace.reset();
        scene.extra->open();
        QVERIFY(!scene.window.presentations.back().has_value());
    }

    void anOpenPanelFollowsTheItem() {
        Scene scene;
        scene.item.itsPlace.reset();
        scene.item.moveTo({1, 2, 24, 24}); // there is no panel yet
        scene.item.itsPlace.reset();
        scene.extra->open();
        scene.item.moveTo({1400, 950, 24, 24});
        QCOMPARE(scene.window.followed, (std::vector{Rect{1400, 950, 24, 24}}));
        QCOMPARE(scene.window.presentations.size(), std::size_t{1});
        scene.window.window->dismiss();
        scene.item.moveTo({1300, 950, 24, 24});
        QCOMPARE(scene.window.followed.size(), std::size_t{1});
    }

    void anOpenPanelFollowsAnItemThatMovedUnnoticedAtTheNextChangeOfTheStore() {
        Scene scene;
        scene.item.press();
        const auto change = [&scene] {
            Q_EMIT scene.store->objectWillChange();
            QCoreApplication::processEvents();
        };
        change();
        QVERIFY(scene.window.followed.empty());
        scene.item.itsPlace = Rect{1300, 950, 24, 24};
        change();
        change();
        QCOMPARE(scene.window.followed, (std::vector{Rect{1300, 950, 24, 24}}));
        scene.item.itsPlace.reset(); // the tray has gone
        change();
        QCOMPARE(scene.window.followed.size(), std::size_t{1});
    }

    void withoutABarItOpensByItself() {
        Scene scene(false);
        scene.host.clock.advance(2999ms);
        QVERIFY(!scene.extra->isOpen());
        scene.host.clock.advance(1ms);
        QVERIFY(scene.extra->isOpen());
    }

    void withABarThatAppearsInTimeItStaysClosed() {
        Scene scene(false);
        scene.host.clock.advance(2s);
        scene.item.shown = true;
        scene.host.clock.advance(1h);
        QCOMPARE(scene.windows, 0);
    }

    void startedWithTheSessionItStaysClosed() {
        Scene scene(false, StartReason::Session);
        scene.host.clock.advance(1h);
        QVERIFY(!scene.extra->isOpen());
        scene.extra->open();
        QVERIFY(scene.extra->isOpen());
    }

    void startedToOpenItOpensAtOnceEvenWithABar() {
        Scene scene(true, StartReason::Open);
        QVERIFY(!scene.extra->isOpen()); // the main loop does not run yet
        scene.host.clock.advance(0ms);
        QVERIFY(scene.extra->isOpen());
    }

    void onceOpenedItDoesNotOpenByItself() {
        Scene scene(false);
        scene.extra->open();
        scene.window.window->dismiss();
        scene.host.clock.advance(1h);
        QVERIFY(!scene.extra->isOpen());
        QCOMPARE(scene.window.presentations.size(), std::size_t{1});
    }

    void afterItsDestructionNothingOpens() {
        Scene scene(false);
        QCOMPARE(scene.host.clock.runningSleeps(), 1);
        scene.extra.reset();
        QCOMPARE(scene.host.clock.runningSleeps(), 0); // and nothing waits any more
        scene.host.clock.advance(1h);
        QCOMPARE(scene.windows, 0);
    }

    void theToolTipIsTheStatusLine() {
        Scene scene;
        QCoreApplication::sendPostedEvents();
        QCOMPARE(scene.item.toolTips, QStringList{QStringLiteral("Loading the live placement…")});
        scene.store->pause24h();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(scene.item.toolTips.last(), scene.store->statusLine());
        QCOMPARE(scene.item.toolTips.size(), 2);
        // Changes of other fields do not set it again.
        scene.host.workspace.screensDidSleep();
        scene.store->saveToken(QString());
        QCoreApplication::sendPostedEvents();
        QCOMPARE(scene.item.toolTips.size(), 2);
    }
};

BRIMLET_TEST(TestMenuBarExtra, QCoreApplication)
#include "tst_menubarextra.moc"
