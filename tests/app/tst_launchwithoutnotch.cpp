#include "app/brimletapp.h"
#include "overlay/overlaycontroller.h"
#include "platform/sharedports.h"
#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

class TestLaunchWithoutNotch final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRuntimeStartsAndSendsAndShowsNothing() {
        HostFixture host;
        host.keepToken("t");
        host.screens.set({}, {});
        FakeOverlayWindow::Record window;
        FakeStatusItem statusItem;
        FakeMenuWindow::Record menu;
        // What the start does, each step with the timers that run by then.
        QStringList steps;
        const auto record = [&](const char* step) {
            steps << QStringLiteral("%1, timers: %2")
                         .arg(QLatin1StringView(step))
                         .arg(host.clock.runningTimers());
        };
        host.workspace.willObserve = record;
        // Here the shared store is created before the application.
        SharedPorts<HostPorts>::set(host.ports());
        const auto first = HostStore::shared();
        const BrimletApp app(host.ports(),
                             {host.screens, host.workspace,
                              [&](OverlayRuntime&) {
                                  record("overlay");
                                  return std::make_unique<FakeOverlayWindow>(window);
                              }},
                             {statusItem, host.clock, [&menu](const std::shared_ptr<HostStore>&) {
                                  return std::make_unique<FakeMenuWindow>(menu);
                              }});
        BrimletAppDelegate delegate;
        delegate.applicationDidFinishLaunching();
        QCoreApplication::sendPostedEvents(&delegate);
        QVERIFY(app.store() == first);
        QVERIFY(first->runtimeStarted);
        QCOMPARE(steps, (QStringList{QStringLiteral("overlay, timers: 0"),
                                     QStringLiteral("sleep, timers: 0"),
                                     QStringLiteral("wake, timers: 0")}));
        QCOMPARE(host.clock.runningTimers(), 2);
        QVERIFY(OverlayController::shared().panel());
        // Rendered: ordered out, and not placed, since there is no built-in screen.
        QCOMPARE(window.calls, (QStringList{QStringLiteral("ignores on"), QStringLiteral("out")}));
        QVERIFY(!window.isShown);
        host.clock.advance(901s);
        QVERIFY(host.http.requests().empty());
        QCOMPARE(HostStore::shared()->statusLine(), QStringLiteral("Notched MacBooks only."));
    }
};

BRIMLET_TEST(TestLaunchWithoutNotch, QCoreApplication)
#include "tst_launchwithoutnotch.moc"
