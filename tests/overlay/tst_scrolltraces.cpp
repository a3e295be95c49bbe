#include "tests/overlay/scrollingoverlay.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

QImage onScreen(const ScrollingOverlay& overlay) {
    return overlay.view.screen()->grabWindow(overlay.view.winId()).toImage();
}

} // namespace

/// Compares each step of a scroll on the screen with a full repaint, at the environment's scale.
class TestScrollTraces final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStepPaintsEverythingThatItChanges_data() {
        QTest::addColumn<double>("notchWidth");
        QTest::newRow("pills at whole points") << 184.0;
        QTest::newRow("at half points") << 185.0;
        QTest::newRow("at quarters") << 184.5;
        QTest::newRow("anywhere") << 184.7;
    }
    void aStepPaintsEverythingThatItChanges() {
        QFETCH(const double, notchWidth);
        ScrollingOverlay f(notchWidth);
        QImage before;
        for (int step = 0; step < 25; ++step) {
            f.host.clock.advance(46ms);
            QCoreApplication::processEvents(); // at fractional scales it paints soon
            const QImage stepped = onScreen(f);
            QVERIFY(stepped != before);
            before = stepped;
            f.paintWhole();
            QCOMPARE(stepped, onScreen(f));
        }
        QVERIFY(f.left()->line().offsetOnScreen() <= -20);
    }

    void textsThatAreDueTogetherArePaintedTogether() {
        ScrollingOverlay f(185);
        f.host.clock.advance(100ms);
        const QSignalSpy left(f.left(), &NotchPill::moved);
        const QSignalSpy right(f.right(), &NotchPill::moved);
        const int start = f.left()->line().offsetOnScreen();
        QCOMPARE(f.right()->line().offsetOnScreen(), start);
        f.host.clock.advance(500ms);
        const int steps = start - f.left()->line().offsetOnScreen();
        QVERIFY(steps >= 10);
        QCOMPARE(f.right()->line().offsetOnScreen(), start - steps);
        // Each time the text that wakes first advances the other one as well.
        QCOMPARE(left.count() + right.count(), steps);
    }
};

BRIMLET_TEST(TestScrollTraces, QApplication)
#include "tst_scrolltraces.moc"
