#include "platform/qt/menuplacement.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

Q_DECLARE_METATYPE(std::optional<QRect>)

namespace {

using Item = std::optional<QRect>;

constexpr QSize kPanel(340, 500);

} // namespace

class TestMenuPlacement final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePanelIsBesideTheItemInTheAvailableArea_data() {
        QTest::addColumn<QSize>("panel");
        QTest::addColumn<Item>("item");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QPoint>("origin");
        const QRect screen(0, 0, 1512, 982);
        const QRect belowBar(0, 24, 1512, 958);
        const QRect aboveBar(0, 0, 1512, 954);
        QTest::newRow("centred below an item in a bar at the top")
            << kPanel << Item(QRect(700, 0, 24, 24)) << belowBar << QPoint(542, 30);
        QTest::newRow("at the left end of a bar at the top")
            << kPanel << Item(QRect(0, 0, 24, 24)) << belowBar << QPoint(0, 30);
        QTest::newRow("at the right end of a bar at the top")
            << kPanel << Item(QRect(1488, 0, 24, 24)) << belowBar << QPoint(1172, 30);
        QTest::newRow("centred above an item in a bar at the bottom")
            << kPanel << Item(QRect(700, 954, 28, 28)) << aboveBar << QPoint(544, 448);
        QTest::newRow("at the left end of a bar at the bottom")
            << kPanel << Item(QRect(0, 954, 28, 28)) << aboveBar << QPoint(0, 448);
        QTest::newRow("at the right end of a bar at the bottom")
            << kPanel << Item(QRect(1484, 954, 28, 28)) << aboveBar << QPoint(1172, 448);
        const QRect besideLeftBar(48, 0, 1464, 982);
        QTest::newRow("upper half of a bar at the left")
            << kPanel << Item(QRect(10, 100, 28, 28)) << besideLeftBar << QPoint(48, 134);
        QTest::newRow("lower half of a bar at the left")
            << kPanel << Item(QRect(10, 900, 28, 28)) << besideLeftBar << QPoint(48, 394);
        const QRect besideRightBar(0, 0, 1464, 982);
        QTest::newRow("upper half of a bar at the right")
            << kPanel << Item(QRect(1474, 100, 28, 28)) << besideRightBar << QPoint(1124, 134);
        QTest::newRow("lower half of a bar at the right")
            << kPanel << Item(QRect(1474, 900, 28, 28)) << besideRightBar << QPoint(1124, 394);
        QTest::newRow("at the pointer in the middle of a bar at the left")
            << kPanel << Item(QRect(20, 480, 1, 1)) << besideLeftBar << QPoint(48, 482);
        QTest::newRow("a bar that reserved no space")
            << kPanel << Item(QRect(700, 0, 24, 24)) << screen << QPoint(542, 30);
        QTest::newRow("an item deep inside two bars")
            << kPanel << Item(QRect(700, 10, 24, 24)) << QRect(0, 80, 1512, 850) << QPoint(542, 80);

        QTest::newRow("upper right corner without an item")
            << kPanel << Item() << screen << QPoint(1166, 6);
        QTest::newRow("upper right corner inside the bars")
            << kPanel << Item() << QRect(48, 24, 1400, 900) << QPoint(1102, 30);

        const QRect leftOfPrimary(-1920, -200, 1920, 1080);
        QTest::newRow("item on a screen left of and above the origin")
            << kPanel << Item(QRect(-30, -200, 24, 24)) << leftOfPrimary << QPoint(-340, -170);
        QTest::newRow("item at the bottom of that screen")
            << kPanel << Item(QRect(-1910, 850, 24, 24)) << leftOfPrimary << QPoint(-1920, 344);
        QTest::newRow("corner of that screen")
            << kPanel << Item() << leftOfPrimary << QPoint(-346, -194);
        const QRect rightOfPrimary(1512, 0, 1920, 1080);
        QTest::newRow("item at the left end of a second screen")
            << kPanel << Item(QRect(1512, 1052, 24, 24)) << rightOfPrimary << QPoint(1512, 546);

        QTest::newRow("higher than the available area: from its top")
            << QSize(340, 700) << Item(QRect(700, 572, 28, 28)) << QRect(0, 0, 1512, 572)
            << QPoint(544, 0);
        QTest::newRow("as high as the available area")
            << QSize(340, 572) << Item(QRect(700, 572, 28, 28)) << QRect(0, 0, 1512, 572)
            << QPoint(544, 0);
        QTest::newRow("wider than the available area: from its left")
            << kPanel << Item(QRect(100, 0, 24, 24)) << QRect(20, 24, 300, 958) << QPoint(20, 30);
        QTest::newRow("larger than the available area without an item")
            << kPanel << Item() << QRect(20, 24, 300, 400) << QPoint(20, 24);
        QTest::newRow("the gap is dropped before the panel leaves the available area")
            << QSize(340, 950) << Item(QRect(700, 0, 24, 24)) << QRect(0, 24, 1512, 952)
            << QPoint(542, 26);
    }
    void thePanelIsBesideTheItemInTheAvailableArea() {
        QFETCH(QSize, panel);
        QFETCH(Item, item);
        QFETCH(QRect, available);
        QFETCH(QPoint, origin);
        QCOMPARE(menuOrigin(panel, item, available), origin);
        const QRect shown(origin, panel.boundedTo(available.size()));
        QVERIFY(available.contains(shown));
    }

    void thePanelIsOnTheItemsScreen_data() {
        QTest::addColumn<QSize>("wish");
        QTest::addColumn<Item>("item");
        QTest::addColumn<QRect>("frame");
        const QSize wish(340, 500);
        QTest::newRow("item on the first screen")
            << wish << Item(QRect(700, 0, 24, 24)) << QRect(542, 30, 340, 500);
        QTest::newRow("item on the second")
            << wish << Item(QRect(-30, -200, 24, 24)) << QRect(-340, -170, 340, 500);
        QTest::newRow("item in a bar of the second")
            << wish << Item(QRect(-34, 860, 24, 20)) << QRect(-340, 354, 340, 500);
        QTest::newRow("most of an item on the second")
            << wish << Item(QRect(-15, 0, 24, 24)) << QRect(-340, 30, 340, 500);
        QTest::newRow("item on no screen: the first")
            << wish << Item(QRect(9000, 0, 24, 24)) << QRect(1172, 30, 340, 500);
        QTest::newRow("no item: the first") << wish << Item() << QRect(1166, 30, 340, 500);
        QTest::newRow("higher than the first screen's available area")
            << QSize(340, 2000) << Item(QRect(700, 0, 24, 24)) << QRect(542, 24, 340, 958);
        QTest::newRow("larger than the second's in both directions")
            << QSize(3000, 2000) << Item(QRect(-30, -200, 24, 24))
            << QRect(-1920, -200, 1920, 1060);
    }
    void thePanelIsOnTheItemsScreen() {
        QFETCH(QSize, wish);
        QFETCH(Item, item);
        const std::vector<MenuScreen> screens{
            {.geometry = {0, 0, 1512, 982}, .available = {0, 24, 1512, 958}},
            {.geometry = {-1920, -200, 1920, 1080}, .available = {-1920, -200, 1920, 1060}}};
        const std::optional<QRect> frame = menuFrame(wish, item, screens);
        QVERIFY(frame);
        QTEST(*frame, "frame");
    }

    void withoutAScreenThereIsNoPlace() { QVERIFY(!menuFrame(kPanel, std::nullopt, {})); }
};

BRIMLET_TEST(TestMenuPlacement, brimlet::NoApplication)
#include "tst_menuplacement.moc"
