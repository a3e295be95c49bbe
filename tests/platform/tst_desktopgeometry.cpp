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
};

BRIMLET_TEST(TestDesktopGeometry, brimlet::NoApplication)
#include "tst_desktopgeometry.moc"
