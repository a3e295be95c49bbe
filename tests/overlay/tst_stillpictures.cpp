#include "tests/overlay/shownoverlay.h"
#include "tests/support/samplepictures.h"
#include "tests/support/testprogram.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
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

/// Of an animated picture the capsule shows only the first frame.
class TestStillPictures final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anAnimationIsStillAndNeedsNoTimer_data() {
        QTest::addColumn<QByteArray>("bytes");
        const QImage first = plain(Qt::red);
        const QImage second = plain(Qt::green);
        QTest::newRow("GIF") << samples::animatedGif({first, second});
        QTest::newRow("WebP") << samples::animatedWebP(
            first.size(), {{.place = {}, .picture = first}, {.place = {}, .picture = second}});
    }
    void anAnimationIsStillAndNeedsNoTimer() {
        QFETCH(QByteArray, bytes);
        ShownOverlay f;
        f.host.http.answer(QStringLiteral("/moving"), 200, bytes);
        QVERIFY(QTest::qWaitForWindowExposed(&f.view));
        f.show("{\"weekStatus\":\"live\",\"creatives\":[{\"slotId\":\"left\","
               "\"assetUrl\":\"https://a.test/moving\"}]}");
        QCoreApplication::processEvents();
        const CreativeMark& mark = f.left()->mark();
        QVERIFY(mark.image());
        QCOMPARE(mark.image()->pixelColor(20, 20), QColor(Qt::red));
        QCoreApplication::processEvents();

        QCOMPARE(f.host.clock.runningTimers(), 0);
        QCOMPARE(f.host.clock.runningSleeps(), 0);
        QCOMPARE(timersOf(f.view), 0);
        f.host.clock.advance(1h);
        QCOMPARE(mark.image()->pixelColor(20, 20), QColor(Qt::red));
    }
};

BRIMLET_TEST(TestStillPictures, QApplication)
#include "tst_stillpictures.moc"
