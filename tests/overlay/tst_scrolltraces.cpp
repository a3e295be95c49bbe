#include "creative/creativeimagecache.h"
#include "overlay/notchpill.h"
#include "overlay/overlayview.h"
#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QByteArray kReply =
    "{\"weekStatus\":\"live\",\"creatives\":["
    "{\"slotId\":\"left\",\"brandName\":\"Left\",\"tagline\":\"Never odd or even, g\u00c4y\"},"
    "{\"slotId\":\"right\",\"brandName\":\"Right\",\"tagline\":\"A tagline much too wide for "
    "it\"}]}";

/// A view whose two taglines begin to scroll at this moment.
struct ScrollFixture final {
    ScrollFixture() {
        host.http.answer(QStringLiteral("/api/display"), 200, kReply);
        startTask(store->refreshDisplay());
        // As the window of the capsules is.
        view.setAttribute(Qt::WA_TranslucentBackground);
        view.resize(428, 40);
        view.show();
        (void)QTest::qWaitForWindowExposed(&view);
        // An odd width of the notch puts the right pill on an odd point.
        runtime.apply(*store, 185, 32);
        QCoreApplication::processEvents();
        host.clock.advance(17600ms);
        QCoreApplication::processEvents();
    }

    [[nodiscard]] const NotchPill& left() const { return *view.findChildren<NotchPill*>().at(0); }
    [[nodiscard]] const NotchPill& right() const { return *view.findChildren<NotchPill*>().at(1); }
    [[nodiscard]] QImage onScreen() const {
        return view.screen()->grabWindow(view.winId()).toImage();
    }

    FakeCachesFolder caches;
    FakeReduceMotion reduceMotion;
    HostFixture host;
    CreativeImageCache images{{host.http, caches}, 1};
    std::shared_ptr<HostStore> store = host.makeStore();
    OverlayRuntime runtime{host.workspace};
    OverlayView view{runtime, {images, host.clock, reduceMotion}};
};

} // namespace

/// What a scroll leaves on screen at the scale of the environment, step by step, against the same
/// state painted as a whole.
class TestScrollTraces final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStepPaintsAllThatItChanges() {
        ScrollFixture f;
        QImage before;
        for (int step = 0; step < 25; ++step) {
            f.host.clock.advance(46ms);
            const QImage stepped = f.onScreen();
            QVERIFY(stepped != before);
            before = stepped;
            f.view.repaint();
            QCOMPARE(stepped, f.onScreen());
        }
        QVERIFY(f.left().line().offsetOnScreen() <= -20);
    }

    void textsThatMoveAtOnceArePaintedTogether() {
        ScrollFixture f;
        f.host.clock.advance(100ms);
        const QSignalSpy left(&f.left(), &NotchPill::moved);
        const QSignalSpy right(&f.right(), &NotchPill::moved);
        const int start = f.left().line().offsetOnScreen();
        QCOMPARE(f.right().line().offsetOnScreen(), start);
        f.host.clock.advance(500ms);
        const int steps = start - f.left().line().offsetOnScreen();
        QVERIFY(steps >= 10);
        QCOMPARE(f.right().line().offsetOnScreen(), start - steps);
        // Whichever is woken first takes the other one along, each time.
        QCOMPARE(left.count() + right.count(), steps);
    }
};

BRIMLET_TEST(TestScrollTraces, QApplication)
#include "tst_scrolltraces.moc"
