#include "overlay/notchgeometry.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

/// A screen of 1000 by 800 points with the given gap between areas of the given heights.
Screen screenWith(double gap, double leftHeight, double rightHeight) {
    Screen screen;
    screen.frame = {100, 200, 1000, 800};
    screen.auxiliaryTopLeftArea = Rect{100, 1000 - leftHeight, 400, leftHeight};
    screen.auxiliaryTopRightArea = Rect{500 + gap, 1000 - rightHeight, 600 - gap, rightHeight};
    return screen;
}

} // namespace

class TestGeometry final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNotchIsMeasuredBetweenTheAreas_data() {
        QTest::addColumn<double>("gap");
        QTest::addColumn<double>("leftHeight");
        QTest::addColumn<double>("rightHeight");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::newRow("a laptop's") << 184.0 << 32.0 << 32.0 << 184.0 << 32.0;
        QTest::newRow("a gap of 12 is 20") << 12.0 << 32.0 << 32.0 << 20.0 << 32.0;
        QTest::newRow("a gap of exactly 20") << 20.0 << 32.0 << 32.0 << 20.0 << 32.0;
        QTest::newRow("overlapping areas") << -30.0 << 32.0 << 32.0 << 20.0 << 32.0;
        QTest::newRow("a height of 18 is 22") << 184.0 << 18.0 << 18.0 << 184.0 << 22.0;
        QTest::newRow("a height of exactly 22") << 184.0 << 22.0 << 22.0 << 184.0 << 22.0;
        QTest::newRow("a height of 38") << 184.0 << 38.0 << 38.0 << 184.0 << 38.0;
        QTest::newRow("the taller left area") << 184.0 << 40.0 << 30.0 << 184.0 << 40.0;
        QTest::newRow("the taller right area") << 184.0 << 30.0 << 40.0 << 184.0 << 40.0;
        QTest::newRow("fractions") << 184.5 << 32.25 << 32.0 << 184.5 << 32.25;
    }
    void theNotchIsMeasuredBetweenTheAreas() {
        QFETCH(double, gap);
        QFETCH(double, leftHeight);
        QFETCH(double, rightHeight);
        const NotchMetrics notch = notchMetrics(screenWith(gap, leftHeight, rightHeight));
        QTEST(notch.width, "width");
        QTEST(notch.height, "height");
    }

    void withoutScreenOrAreasTheNotchIs180By32() {
        const NotchMetrics fallback{180, 32};
        QCOMPARE(notchMetrics(std::nullopt), fallback);
        Screen screen = screenWith(184, 32, 32);
        screen.auxiliaryTopLeftArea.reset();
        QCOMPARE(notchMetrics(screen), fallback);
        screen = screenWith(184, 32, 32);
        screen.auxiliaryTopRightArea.reset();
        QCOMPARE(notchMetrics(screen), fallback);
    }

    void thePanelHangsFromTheTopEdgeCentred_data() {
        QTest::addColumn<double>("notchWidth");
        QTest::addColumn<double>("notchHeight");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::newRow("a laptop's") << 184.0 << 32.0 << 428.0 << 40.0;
        QTest::newRow("the narrowest: panel width 264") << 20.0 << 32.0 << 264.0 << 40.0;
        QTest::newRow("height 22: max(22, 24) + 8 = 32") << 184.0 << 22.0 << 428.0 << 32.0;
        QTest::newRow("height 24") << 184.0 << 24.0 << 428.0 << 32.0;
        QTest::newRow("height 38: 46") << 184.0 << 38.0 << 428.0 << 46.0;
        QTest::newRow("fallback") << 180.0 << 32.0 << 424.0 << 40.0;
    }
    void thePanelHangsFromTheTopEdgeCentred() {
        QFETCH(double, notchWidth);
        QFETCH(double, notchHeight);
        QFETCH(double, width);
        QFETCH(double, height);
        const Rect screen{-300, 50, 1512, 982};
        const Rect frame = panelFrame(screen, {notchWidth, notchHeight});
        QCOMPARE(frame.width, width);
        QCOMPARE(frame.height, height);
        QCOMPARE(frame.x, -300 + 756 - width / 2);
        QCOMPARE(frame.maxY(), screen.maxY());
    }

    void theAllowancesAreAddedOneAfterTheOther() {
        // A width at which (w + 216) + 28 and w + (216 + 28) differ in the last bit.
        const double w = 0.1 + 3.5e-14;
        double notchWidth = 20;
        bool isFound = false;
        for (int i = 0; i < 100'000 && !isFound; ++i) {
            notchWidth += w;
            isFound = (notchWidth + 216.0) + 28.0 != notchWidth + (216.0 + 28.0);
        }
        QVERIFY(isFound);
        QVERIFY(panelFrame({0, 0, 4000, 900}, {notchWidth, 32}).width ==
                (notchWidth + 216.0) + 28.0);
    }
};

BRIMLET_TEST(TestGeometry, brimlet::NoApplication)
#include "tst_geometry.moc"
