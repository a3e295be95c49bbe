#include "overlay/overlaycontroller.h"
#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

/// A controller that counts the windows it creates.
struct ControllerFixture final {
    HostFixture host;
    FakeOverlayWindow::Record window;
    int windows = 0;
    OverlayController controller{{host.screens, host.workspace, [this](OverlayRuntime&) {
                                      ++windows;
                                      return std::make_unique<FakeOverlayWindow>(window);
                                  }}};
};

} // namespace

class TestController final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void beforeTheStartARefreshDoesNothing() {
        ControllerFixture f;
        f.controller.refresh();
        QCOMPARE(f.windows, 0);
        QVERIFY(f.controller.panel() == nullptr);
    }

    void startingCreatesThePanelAndRenders() {
        ControllerFixture f;
        const auto store = makeLiveStore(f.host);
        f.controller.start(store);
        QCOMPARE(f.windows, 1);
        QVERIFY(f.window.isShown);
    }

    void aSecondStartRendersAnotherStoreInTheSamePanel() {
        ControllerFixture f;
        const auto first = makeLiveStore(f.host);
        f.controller.start(first);
        f.host.http.answer(QStringLiteral("/api/display"), 200, "{}");
        const auto second = f.host.makeStore();
        startTask(second->refreshDisplay());
        f.controller.start(second);
        QCOMPARE(f.windows, 1);
        QVERIFY(!f.window.isShown);
    }

    void theStoreIsHeldWeakly() {
        ControllerFixture f;
        auto store = makeLiveStore(f.host);
        f.controller.start(store);
        const std::weak_ptr<HostStore> weak = store;
        store.reset();
        QVERIFY(weak.expired());
        f.window.calls.clear();
        f.controller.refresh();
        QVERIFY(f.window.calls.isEmpty());
        QVERIFY(f.window.isShown); // the panel keeps its last state
    }

    void connectedToTheStoreItFollowsEveryChange() {
        ControllerFixture f;
        const auto store = makeLiveStore(f.host);
        QObject::connect(store.get(), &HostStore::overlayNeedsRender,
                         [&f] { f.controller.refresh(); });
        f.controller.start(store);
        store->watchScreens();
        f.host.workspace.screensDidSleep();
        QVERIFY(!f.window.isShown);
        f.host.workspace.screensDidWake();
        QVERIFY(f.window.isShown);
        f.host.http.answer(QStringLiteral("/api/display"), 200,
                           R"({"weekStatus":"live","forceHide":true})");
        startTask(store->refreshDisplay());
        QVERIFY(!f.window.isShown);
        f.host.http.answer(QStringLiteral("/api/display"), 200,
                           R"({"weekStatus":"live","creatives":[{"slotId":"right"}]})");
        startTask(store->refreshDisplay());
        QVERIFY(f.window.isShown);
        QVERIFY(f.controller.panel()->runtime().right());
        store->pause24h();
        QVERIFY(!f.window.isShown);
    }
};

BRIMLET_TEST(TestController, QCoreApplication)
#include "tst_controller.moc"
