#include "creative/creativeimagecache.h"
#include "overlay/notchpill.h"
#include "overlay/overlayview.h"
#include "tests/support/hostfixture.h"
#include "tests/support/samplepictures.h"
#include "tests/support/testprogram.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

QImage plain(Qt::GlobalColor color) {
    QImage picture(40, 40, QImage::Format_RGB32);
    picture.fill(color);
    return picture;
}

/// The timers that run for the view and everything in it.
qsizetype timersOf(const OverlayView& view) {
    auto* const dispatcher = QAbstractEventDispatcher::instance();
    qsizetype timers = dispatcher->registeredTimers(const_cast<OverlayView*>(&view)).size();
    for (QObject* const each : view.findChildren<QObject*>()) {
        timers += dispatcher->registeredTimers(each).size();
    }
    return timers;
}

} // namespace

/// Of a picture that moves, the capsule shows the first frame and nothing else.
class TestStillPictures final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anAnimationStandsStillWithoutATimer_data() {
        QTest::addColumn<QByteArray>("bytes");
        const QImage first = plain(Qt::red);
        const QImage second = plain(Qt::green);
        QTest::newRow("GIF") << samples::animatedGif({first, second});
        QTest::newRow("WebP") << samples::animatedWebP(
            first.size(), {{.place = {}, .picture = first}, {.place = {}, .picture = second}});
    }
    void anAnimationStandsStillWithoutATimer() {
        QFETCH(QByteArray, bytes);
        QTemporaryDir folder;
        FakeCachesFolder caches;
        caches.folder = folder.path();
        FakeReduceMotion reduceMotion;
        HostFixture host;
        host.http.answer(QStringLiteral("/moving"), 200, bytes);
        host.http.answer(QStringLiteral("/api/display"), 200,
                         "{\"weekStatus\":\"live\",\"creatives\":[{\"slotId\":\"left\","
                         "\"assetUrl\":\"https://a.test/moving\"}]}");
        CreativeImageCache images({host.http, caches}, 1);
        const auto store = host.makeStore();
        OverlayRuntime runtime(host.workspace);
        OverlayView view(runtime, {images, host.clock, reduceMotion});
        view.resize(428, 40);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        startTask(store->refreshDisplay());
        runtime.apply(*store, 184, 32);
        QCoreApplication::processEvents();
        const NotchPill& pill = *view.findChildren<NotchPill*>().at(0);
        QVERIFY(pill.mark().image());
        QCOMPARE(pill.mark().image()->pixelColor(20, 20), QColor(Qt::red));
        QCoreApplication::processEvents();

        QCOMPARE(host.clock.runningTimers(), 0);
        QCOMPARE(host.clock.runningSleeps(), 0);
        QCOMPARE(timersOf(view), 0);
        host.clock.advance(1h);
        QCOMPARE(pill.mark().image()->pixelColor(20, 20), QColor(Qt::red));
    }
};

BRIMLET_TEST(TestStillPictures, QApplication)
#include "tst_stillpictures.moc"
