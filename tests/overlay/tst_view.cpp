#include "overlay/notchpill.h"
#include "overlay/overlayview.h"
#include "tests/support/hostfixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace brimlet;

namespace {

const QByteArray kBoth =
    "{\"weekStatus\":\"live\",\"creatives\":["
    "{\"slotId\":\"left\",\"brandName\":\"Left\",\"brandUrl\":\"https://l.test/\"},"
    "{\"slotId\":\"right\",\"brandName\":\"Right\",\"brandUrl\":\"http://r.test/\"}]}";

/// A view of 428 by 40 over a runtime that follows a store.
struct ViewFixture final {
    ViewFixture() { view.resize(428, 40); }

    void show(const QByteArray& reply) {
        host.http.answer(QStringLiteral("/api/display"), 200, reply);
        startTask(store->refreshDisplay());
        runtime.apply(*store, 184, 32);
        QCoreApplication::sendPostedEvents(&view);
    }

    HostFixture host;
    std::shared_ptr<HostStore> store = host.makeStore();
    OverlayRuntime runtime{host.workspace};
    OverlayView view{runtime};
};

int paintsOf(OverlayView& view) {
    struct Counter final : QObject {
        bool eventFilter(QObject* /*watched*/, QEvent* event) override {
            count += event->type() == QEvent::UpdateRequest || event->type() == QEvent::Paint;
            return false;
        }
        int count = 0;
    } counter;
    view.installEventFilter(&counter);
    for (NotchPill* pill : view.findChildren<NotchPill*>()) {
        pill->installEventFilter(&counter);
    }
    QCoreApplication::sendPostedEvents();
    return counter.count;
}

} // namespace

class TestView final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void twoCapsulesStandBesideTheGap() {
        ViewFixture f;
        f.show(kBoth);
        const QImage image = f.view.grab().toImage();
        // Inside the capsules it is nearly black, in the gap and around it nothing is painted.
        QVERIFY(f.view.painted().contains(QPoint(8 + 54, 13)));
        QVERIFY(f.view.painted().contains(QPoint(312 + 54, 13)));
        QVERIFY(!f.view.painted().contains(QPoint(214, 13)));
        QVERIFY(!f.view.painted().contains(QPoint(8, 1))); // a corner that the capsule leaves out
        QCOMPARE(f.view.painted().boundingRect(), QRect(8, 1, 412, 24));
        QVERIFY(image.pixelColor(8 + 100, 13).lightness() < 20);
    }

    void onlyAllowedLinksTakeClicks() {
        ViewFixture f;
        f.show(kBoth);
        QCOMPARE(f.view.clickable().boundingRect(), QRect(8, 1, 108, 24));
        const auto pills = f.view.findChildren<NotchPill*>();
        QTest::mouseClick(pills.at(0), Qt::LeftButton);
        QCOMPARE(f.host.workspace.opened, std::vector<QString>{QStringLiteral("https://l.test/")});
        QTest::mouseClick(pills.at(1), Qt::LeftButton);
        QTest::mouseClick(pills.at(0), Qt::RightButton);
        QCOMPARE(f.host.workspace.opened.size(), std::size_t{1});
    }

    void aClickReleasedOutsideOpensNothing() {
        ViewFixture f;
        f.show(kBoth);
        auto* const pill = f.view.findChildren<NotchPill*>().at(0);
        QTest::mousePress(pill, Qt::LeftButton);
        QTest::mouseRelease(pill, Qt::LeftButton, {}, QPoint(300, 10));
        QVERIFY(f.host.workspace.opened.empty());
    }

    void withoutCreativesNothingIsPaintedOrClickable() {
        ViewFixture f;
        f.show(R"({"weekStatus":"live"})");
        QVERIFY(f.runtime.visible());
        QVERIFY(f.view.painted().isEmpty());
        QVERIFY(f.view.clickable().isEmpty());
    }

    void hiddenAdsAreNeitherPaintedNorClickable() {
        ViewFixture f;
        f.show(kBoth);
        f.store->pause24h();
        f.runtime.apply(*f.store, 184, 32);
        QCoreApplication::sendPostedEvents(&f.view);
        QVERIFY(f.view.painted().isEmpty());
        QVERIFY(f.view.clickable().isEmpty());
        QVERIFY(f.view.findChildren<NotchPill*>().at(0)->isHidden());
    }

    void aRenderThatChangesNothingPaintsNothing() {
        ViewFixture f;
        f.view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&f.view));
        f.show(kBoth);
        (void)paintsOf(f.view);
        const QSignalSpy regions(&f.view, &OverlayView::regionsChanged);
        f.show(kBoth);
        QCOMPARE(paintsOf(f.view), 0);
        QCOMPARE(regions.count(), 0);
        // While a change does paint.
        QByteArray other = kBoth;
        f.show(other.replace("\"Left\"", "\"Else\""));
        QVERIFY(paintsOf(f.view) > 0);
    }

    void changesAreDrawnOncePerTurn() {
        ViewFixture f;
        f.show(kBoth);
        const QSignalSpy regions(&f.view, &OverlayView::regionsChanged);
        f.host.http.answer(QStringLiteral("/api/display"), 200, R"({"weekStatus":"live"})");
        startTask(f.store->refreshDisplay());
        f.runtime.apply(*f.store, 184, 32);
        f.runtime.apply(*f.store, 184, 32);
        QCOMPARE(regions.count(), 0);
        QCoreApplication::sendPostedEvents(&f.view);
        QCOMPARE(regions.count(), 1);
    }
};

QTEST_MAIN(TestView)
#include "tst_view.moc"
