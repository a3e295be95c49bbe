#include "platform/qt/desktopgeometry.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

class TestDesktopGeometry final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rectanglesConvertBothWays_data() {
        QTest::addColumn<QRectF>("primary");
        QTest::addColumn<QRectF>("qt");
        QTest::addColumn<QRectF>("points"); // x, y of the lower left corner, width, height
        const QRectF laptop(0, 0, 1512, 982);
        QTest::newRow("the primary screen itself") << laptop << laptop << QRectF(0, 0, 1512, 982);
        QTest::newRow("its top edge")
            << laptop << QRectF(542, 0, 428, 40) << QRectF(542, 942, 428, 40);
        QTest::newRow("its bottom edge")
            << laptop << QRectF(0, 962, 10, 20) << QRectF(0, 0, 10, 20);
        QTest::newRow("a screen to the right, tops aligned")
            << laptop << QRectF(1512, 0, 1920, 1080) << QRectF(1512, -98, 1920, 1080);
        QTest::newRow("a screen to the left, bottoms aligned")
            << laptop << QRectF(-1920, -98, 1920, 1080) << QRectF(-1920, 0, 1920, 1080);
        QTest::newRow("a screen above")
            << laptop << QRectF(0, -1080, 1920, 1080) << QRectF(0, 982, 1920, 1080);
        QTest::newRow("a screen below")
            << laptop << QRectF(0, 982, 1920, 1080) << QRectF(0, -1080, 1920, 1080);
        QTest::newRow("a primary screen away from the origin")
            << QRectF(1920, 300, 1512, 982) << QRectF(1920, 300, 100, 40)
            << QRectF(0, 942, 100, 40);
        QTest::newRow("fractions")
            << laptop << QRectF(541.75, 0.5, 428.5, 40.25) << QRectF(541.75, 941.25, 428.5, 40.25);
    }
    void rectanglesConvertBothWays() {
        QFETCH(QRectF, primary);
        QFETCH(QRectF, qt);
        QFETCH(QRectF, points);
        const Rect rect{points.x(), points.y(), points.width(), points.height()};
        QCOMPARE(fromQt(qt, primary), rect);
        QCOMPARE(toQt(rect, primary), qt);
    }

    void framesAreWidenedToWholePointsAroundTheirCentre_data() {
        QTest::addColumn<QRectF>("exact");
        QTest::addColumn<QRectF>("whole");
        QTest::newRow("whole") << QRectF(542, 942, 428, 40) << QRectF(542, 942, 428, 40);
        QTest::newRow("at half points") << QRectF(541.5, 942, 429, 40) << QRectF(541, 942, 430, 40);
        QTest::newRow("at quarters") << QRectF(541.75, 942, 428.5, 40) << QRectF(541, 942, 430, 40);
        QTest::newRow("around a half point")
            << QRectF(541.25, 942, 428.5, 40) << QRectF(541, 942, 429, 40);
        QTest::newRow("left of the primary screen")
            << QRectF(-970.25, 942, 428.5, 40) << QRectF(-971, 942, 430, 40);
        QTest::newRow("height") << QRectF(542, 941.4, 428, 40.6) << QRectF(542, 941, 428, 41);
        QTest::newRow("upper edge rounded up by a computation")
            << QRectF(542, 941.4, 428, 40.600000001) << QRectF(542, 941, 428, 41);
    }
    void framesAreWidenedToWholePointsAroundTheirCentre() {
        QFETCH(const QRectF, exact);
        QFETCH(const QRectF, whole);
        const Rect found = inWholePoints({exact.x(), exact.y(), exact.width(), exact.height()});
        QCOMPARE(QRectF(found.x, found.y, found.width, found.height), whole);
    }
};

BRIMLET_TEST(TestDesktopGeometry, brimlet::NoApplication)
#include "tst_desktopgeometry.moc"
