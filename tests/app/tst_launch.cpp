#include "app/brimletapp.h"
#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

/// One process has one store and one overlay, so these steps share them and run in this order.
class TestLaunch final : public QObject {
    Q_OBJECT

    HostFixture m_host;
    FakeOverlayWindow::Record m_window;
    FakeStatusItem m_statusItem;
    FakeMenuWindow::Record m_menu;
    std::shared_ptr<HostStore> m_menuStore;
    int m_windows = 0;
    std::size_t m_requestsAtWindow = 99;
    std::unique_ptr<BrimletApp> m_app;
    BrimletAppDelegate m_delegate;

private Q_SLOTS:
    void initTestCase() {
        m_host.keepToken("t");
        m_app = std::make_unique<BrimletApp>(
            m_host.ports(),
            OverlayPorts{m_host.screens, m_host.workspace,
                         [this](OverlayRuntime&) {
                             ++m_windows;
                             m_requestsAtWindow = m_host.http.requests().size();
                             return std::make_unique<FakeOverlayWindow>(m_window);
                         }},
            MenuPorts{m_statusItem, m_host.clock, [this](const std::shared_ptr<HostStore>& store) {
                          m_menuStore = store;
                          return std::make_unique<FakeMenuWindow>(m_menu);
                      }});
    }

    void buildingTheApplicationStartsNothing() {
        QVERIFY(!HostStore::shared()->runtimeStarted);
        QCOMPARE(m_windows, 0);
        QVERIFY(m_host.http.requests().empty());
        QCOMPARE(m_host.clock.runningTimers(), 0);
    }

    void theLaunchNotificationOnlyQueuesTheStart() {
        m_delegate.applicationDidFinishLaunching();
        QVERIFY(!HostStore::shared()->runtimeStarted);
        QCOMPARE(m_windows, 0);
        QVERIFY(m_host.http.requests().empty());
    }

    void oneTurnLaterTheOverlayIsCreatedAndThenTheFirstRequestSent() {
        QCoreApplication::sendPostedEvents(&m_delegate);
        QVERIFY(HostStore::shared()->runtimeStarted);
        QCOMPARE(m_windows, 1);
        QCOMPARE(m_requestsAtWindow, std::size_t{0});
        QCOMPARE(m_host.http.log(), QStringList{QStringLiteral("GET /api/display")});
        QCOMPARE(m_host.clock.runningTimers(), 2);
    }

    void theHeartbeatFollowsTheDisplay() {
        m_host.http.resolve(0, HttpReply{200, R"({"weekStatus":"live"})"});
        QCOMPARE(m_host.http.log(), (QStringList{QStringLiteral("GET /api/display"),
                                                 QStringLiteral("POST /api/host/heartbeat")}));
    }

    void anAppliedReplyReachesTheOverlay() { QVERIFY(m_window.isShown); }

    void aSecondLaunchNotificationHasNoEffect() {
        m_host.http.clear();
        m_delegate.applicationDidFinishLaunching();
        m_delegate.applicationDidFinishLaunching();
        QCoreApplication::sendPostedEvents(&m_delegate);
        QCOMPARE(m_windows, 1);
        QCOMPARE(m_host.clock.runningTimers(), 2);
        QVERIFY(m_host.http.requests().empty());
        m_host.workspace.screensDidSleep();
        QCOMPARE(m_host.http.log(), QStringList{QStringLiteral("POST /api/host/heartbeat")});
        QVERIFY(!m_window.isShown);
        m_host.http.clear();
        m_host.workspace.screensDidWake();
        QCOMPARE(m_host.http.log(), QStringList{QStringLiteral("POST /api/host/heartbeat")});
        QVERIFY(m_window.isShown);
    }

    void aChangeOfScreensRendersAgain() {
        Screen moved = notchedScreen(1);
        moved.frame.x = 100;
        m_host.screens.set({moved}, {1});
        QCOMPARE(m_window.frame.x, 100 + 756.0 - 214);
    }

    void thereIsOneStoreInTheProcess() {
        QVERIFY(m_app->store() == HostStore::shared());
        // It is the one that the launch started and the overlay shows.
        QVERIFY(m_app->store()->runtimeStarted);
        m_statusItem.press();
        QVERIFY(m_menuStore == m_app->store());
        QVERIFY(m_window.isShown);
    }

    void theItemsMenuOpensAndPauses() {
        QVERIFY(m_menu.isPresented);
        m_menu.window->dismiss();
        m_statusItem.choose(InstanceRequest::Open); // at once: no click that closed it
        QVERIFY(m_menu.isPresented);
        QVERIFY(!m_app->store()->pausedUntil());
        m_statusItem.choose(InstanceRequest::Pause);
        QVERIFY(m_app->store()->pausedUntil());
        QVERIFY(!m_window.isShown);
    }
};

BRIMLET_TEST(TestLaunch, QCoreApplication)
#include "tst_launch.moc"
