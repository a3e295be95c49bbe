#include "platform/linux/x11overlaywindow.h"
#include "tests/overlay/scrollingoverlay.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QScreen>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

/// Compares each step of a scroll, which is copied on the X server, with a full repaint, at the
/// environment's scale.
class TestX11ScrollTraces final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStepThatIsCopiedIsLikeAPaint_data() {
        QTest::addColumn<double>("notchWidth");
        QTest::newRow("pills at whole points") << 184.0;
        QTest::newRow("anywhere") << 184.7;
    }
    void aStepThatIsCopiedIsLikeAPaint() {
        QFETCH(const double, notchWidth);
        ScrollingOverlay f(notchWidth);
        f.view.disconnect(&f.view); // the window shows its changes
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        X11OverlayWindow window(std::move(f.content), [screen] { return QRectF(screen); });
        connect(&f.view, &OverlayView::stepped, &window,
                [&window](std::span<const TextStrip> texts) { window.showTexts(texts); });
        window.setFrame({100, static_cast<double>(screen.height()) - 140, 428, 40});
        QPainterPath pills = f.left()->capsule();
        pills.addPath(f.right()->capsule());
        window.setRegions(pills, pills);
        window.orderFrontRegardless();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCoreApplication::processEvents();
        f.host.clock.advance(17600ms); // on screen again, so from the start
        QCoreApplication::processEvents();
        const auto onScreen = [&window] {
            return window.screen()->grabWindow(window.winId()).toImage();
        };
        QImage before;
        for (int step = 0; step < 25; ++step) {
            f.host.clock.advance(46ms);
            const QImage stepped = onScreen();
            QVERIFY(stepped != before);
            before = stepped;
            f.paintWhole();
            QCOMPARE(stepped, onScreen());
        }
        QVERIFY(f.left()->line().offsetOnScreen() <= -20);
    }
};

BRIMLET_TEST(TestX11ScrollTraces, QApplication)
#include "tst_x11scrolltraces.moc"
