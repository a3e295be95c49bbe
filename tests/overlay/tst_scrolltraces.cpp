#include "creative/creativeimagecache.h"
#include "overlay/notchpill.h"
#include "overlay/overlayview.h"
#include "tests/support/hostfixture.h"

#include <QScreen>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QByteArray kReply =
    "{\"weekStatus\":\"live\",\"creatives\":["
    "{\"slotId\":\"left\",\"brandName\":\"Left\",\"tagline\":\"Never odd or even, g\u00c4y\"},"
    "{\"slotId\":\"right\",\"brandName\":\"Right\",\"tagline\":\"A tagline much too wide for "
    "it\"}]}";

} // namespace

/// What a scroll leaves on screen at the scale of the environment, step by step, against the same
/// state painted as a whole.
class TestScrollTraces final : public QObject {
    Q_OBJECT

    FakeCachesFolder m_caches;
    FakeReduceMotion m_reduceMotion;
    HostFixture m_host;
    CreativeImageCache m_images{{m_host.http, m_caches}, 1};

    static QImage onScreen(OverlayView& view) {
        return view.screen()->grabWindow(view.winId()).toImage();
    }

private Q_SLOTS:
    void aStepPaintsAllThatItChanges() {
        const auto store = m_host.makeStore();
        m_host.http.answer(QStringLiteral("/api/display"), 200, kReply);
        startTask(store->refreshDisplay());
        OverlayRuntime runtime(m_host.workspace);
        OverlayView view(runtime, {m_images, m_host.clock, m_reduceMotion});
        view.resize(428, 40);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        // An odd width of the notch puts the right pill on an odd point.
        runtime.apply(*store, 185, 32);
        QCoreApplication::processEvents();
        m_host.clock.advance(17600ms);
        QCoreApplication::processEvents();
        const auto* const left = view.findChildren<NotchPill*>().at(0);
        QImage before;
        for (int step = 0; step < 25; ++step) {
            m_host.clock.advance(46ms);
            const QImage stepped = onScreen(view);
            QVERIFY(stepped != before);
            before = stepped;
            view.repaint();
            QCOMPARE(stepped, onScreen(view));
        }
        QVERIFY(left->line().offsetOnScreen() <= -20);
    }
};

QTEST_MAIN(TestScrollTraces)
#include "tst_scrolltraces.moc"
