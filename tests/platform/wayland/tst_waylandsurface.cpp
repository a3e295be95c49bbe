#include "tests/platform/wayland/waylandfixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QTest>

using namespace brimlet;

namespace {

/// What the compositor is asked for with the whole picture.
const QString kWhole = QStringLiteral("capsules: 0,0 428x40");

} // namespace

/// Where the surface is, what is painted, and when.
class TestWaylandSurface final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsAPartOfTheOverlayLayerAtTheVeryTop_data() {
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("whole");
        QTest::newRow("KWin 5.27's") << 3 << QStringLiteral("part of the popup");
        QTest::newRow("newer") << 4 << QStringLiteral("part of the layer surface");
    }
    void itIsAPartOfTheOverlayLayerAtTheVeryTop() {
        QFETCH(const int, version);
        QFETCH(const QString, whole);
        WaylandFixture f({.layerShellVersion = version});
        QVERIFY(f.show());
        // Layer 3 is the overlay's; 5 are the top and left edges. No keyboard is asked for. The
        // popup is where no panel moves it.
        QCOMPARE(f.compositor.layer(),
                 QStringLiteral("layer 3 on eDP-1 anchor 5 at 542,240 zone -1"));
        QCOMPARE(f.compositor.log.contains(QStringLiteral("popup placed at 0,0 1x1")), version < 4);
        QVERIFY(f.compositor.log.contains(whole));
        QVERIFY(f.compositor.log.contains(QStringLiteral("part at 0,-240")));
        QVERIFY(f.compositor.log.contains(kWhole));
    }

    void clicksReachOnlyTheClickableCapsules() {
        WaylandFixture f;
        QVERIFY(f.show());
        QTRY_COMPARE(f.compositor.inputRegion(), QRegion(kLeft) + QRegion(kRight));
        f.window->setRegions(boxes({kRight}), boxes({kLeft, kRight}));
        QTRY_COMPARE(f.compositor.inputRegion(), QRegion(kRight));
        f.window->setIgnoresMouseEvents(true);
        QTRY_COMPARE(f.compositor.inputRegion(), QRegion());
    }

    void hiddenItHasNoSurface() {
        WaylandFixture f;
        QVERIFY(f.show());
        QVERIFY(f.left->isVisible());
        f.window->orderOut();
        QVERIFY(!f.left->isVisible());
        QVERIFY(f.sees(QStringLiteral("capsules gone")));
        QVERIFY(f.sees(QStringLiteral("anchor gone")));
        QVERIFY(!f.compositor.isShown());
        QVERIFY(f.show());
    }

    void itIsOutWhileTheSessionIsLocked() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.window->setSessionLocked(true);
        QVERIFY(!f.left->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(!f.compositor.isShown(), kPatience);
        f.window->orderFrontRegardless();
        QVERIFY(!f.left->isVisible());
        f.window->setSessionLocked(false);
        QTRY_VERIFY_WITH_TIMEOUT(f.compositor.isShown(), kPatience);
    }

    void orderingItFrontAgainSendsNothing() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.synchronise();
        const int before = f.compositor.requests();
        for (int i = 0; i < 10; ++i) {
            f.window->setFrame(kFrame);
            f.window->setIgnoresMouseEvents(false);
            f.window->orderFrontRegardless();
        }
        f.synchronise();
        QCOMPARE(f.compositor.requests(), before);
        f.window->setIgnoresMouseEvents(true);
        f.synchronise();
        QVERIFY(f.compositor.requests() > before);
    }

    void onlyWhatHasChangedIsDamaged() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.synchronise();
        f.window->updateContent(kLeft);
        f.window->updateContent(QRect(320, 5, 10, 10));
        QVERIFY(f.sees(QStringLiteral("capsules: 8,1 108x4 + 8,5 108x10 + 320,5 10x10 + "
                                      "8,15 108x10")));
        f.synchronise();
        f.window->showTexts(textIn({40, 5, 60, 16}));
        QVERIFY(f.sees(QStringLiteral("capsules: 40,5 60x16")));
    }

    void aCompositorThatNeverAnswersGetsOnePicture() {
        WaylandFixture f({.answersFrames = false});
        QVERIFY(f.show());
        f.synchronise();
        for (int i = 0; i < 1000; ++i) {
            f.window->showTexts(textIn({40 + i % 10, 5, 60, 16}));
            f.window->updateContent(kRight);
            QCoreApplication::processEvents();
        }
        QCOMPARE(f.compositor.log, QStringList());
        // All that is due comes with one picture.
        f.compositor.answerFrame();
        QVERIFY(f.sees(QStringLiteral("capsules: 312,1 108x4 + 40,5 69x16 + 312,5 108x16 + "
                                      "312,21 108x4")));
        f.synchronise();
        QCOMPARE(f.compositor.log, QStringList());
    }

    void buffersThatAreNeverGivenBackAreNotPaintedOn() {
        WaylandFixture f({.releasesBuffers = false});
        QVERIFY(f.show());
        for (int i = 0; i < 20; ++i) {
            f.window->updateContent(kLeft);
            QCoreApplication::processEvents();
            QCoreApplication::processEvents();
        }
        f.synchronise();
        QCOMPARE(f.compositor.buffersInUse(), 2);
        f.window->updateContent(kLeft);
        f.synchronise();
        QCOMPARE(f.compositor.buffersInUse(), 2);
    }

    void takenAwayItComesBackWhenItIsNextOrderedFront_data() {
        QTest::addColumn<bool>("isPopup");
        QTest::newRow("closed") << false;
        QTest::newRow("popup_done") << true;
    }
    void takenAwayItComesBackWhenItIsNextOrderedFront() {
        QFETCH(const bool, isPopup);
        WaylandFixture f({.layerShellVersion = isPopup ? 3 : 4});
        QVERIFY(f.show());
        f.compositor.log.clear();
        if (isPopup) {
            f.compositor.endPopup();
        } else {
            f.compositor.closeLayerSurface();
        }
        QVERIFY(f.sees(QStringLiteral("capsules gone")));
        QVERIFY(f.sees(QStringLiteral("anchor gone")));
        QVERIFY(!f.left->isVisible());
        f.window->orderFrontRegardless();
        QTRY_VERIFY_WITH_TIMEOUT(f.compositor.isShown(), kPatience);
        QVERIFY(f.left->isVisible());
    }

    void atAFractionalScalePixelsAreTheScreens() {
        const StandInOutput screen{.logical = {0, 0, 1512, 982}, .mode = {2268, 1473}, .scale = 2};
        WaylandFixture f({.hasFractionalScale = true}, {screen});
        QVERIFY(f.show());
        QVERIFY(f.sees(QStringLiteral("capsules: 0,0 642x60")));
        f.synchronise();
        f.window->updateContent(kLeft);
        // 8 to 116 and 1 to 25 points.
        QVERIFY(f.sees(QStringLiteral("capsules: 12,1 162x37")));
    }

    void withoutFractionalScalesTheScreensWholeScaleCounts() {
        const StandInOutput screen{.logical = {0, 0, 1512, 982}, .mode = {3024, 1964}, .scale = 2};
        WaylandFixture f({}, {screen});
        QVERIFY(f.show());
        QVERIFY(f.sees(QStringLiteral("capsules: 0,0 856x80")));
    }
};

BRIMLET_TEST(TestWaylandSurface, QApplication)
#include "tst_waylandsurface.moc"
