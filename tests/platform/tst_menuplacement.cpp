#include "platform/qt/menuplacement.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

Q_DECLARE_METATYPE(std::optional<QPoint>)
Q_DECLARE_METATYPE(std::optional<QRect>)

namespace {

using Item = std::optional<QRect>;
using Point = std::optional<QPoint>;

constexpr QSize kPanel(340, 500);

} // namespace

class TestMenuPlacement final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePanelIsBesideTheItemInTheAvailableArea_data() {
        QTest::addColumn<QSize>("panel");
        QTest::addColumn<QRect>("item");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QPoint>("origin");
        const QRect screen(0, 0, 1512, 982);
        const QRect belowBar(0, 24, 1512, 958);
        const QRect aboveBar(0, 0, 1512, 954);
        QTest::newRow("centred below an item in a bar at the top")
            << kPanel << QRect(700, 0, 24, 24) << belowBar << QPoint(542, 30);
        QTest::newRow("at the left end of a bar at the top")
            << kPanel << QRect(0, 0, 24, 24) << belowBar << QPoint(6, 30);
        QTest::newRow("at the right end of a bar at the top")
            << kPanel << QRect(1488, 0, 24, 24) << belowBar << QPoint(1166, 30);
        QTest::newRow("an item lower than its bar at the top")
            << kPanel << QRect(700, 1, 16, 16) << belowBar << QPoint(538, 30);
        QTest::newRow("centred above an item in a bar at the bottom")
            << kPanel << QRect(700, 954, 28, 28) << aboveBar << QPoint(544, 448);
        QTest::newRow("an item lower than its bar at the bottom")
            << kPanel << QRect(700, 962, 16, 16) << aboveBar << QPoint(538, 448);
        QTest::newRow("at the left end of a bar at the bottom")
            << kPanel << QRect(0, 954, 28, 28) << aboveBar << QPoint(6, 448);
        QTest::newRow("at the right end of a bar at the bottom")
            << kPanel << QRect(1484, 954, 28, 28) << aboveBar << QPoint(1166, 448);
        const QRect besideLeftBar(48, 0, 1464, 982);
        QTest::newRow("upper half of a bar at the left")
            << kPanel << QRect(10, 100, 28, 28) << besideLeftBar << QPoint(54, 134);
        QTest::newRow("lower half of a bar at the left")
            << kPanel << QRect(10, 900, 28, 28) << besideLeftBar << QPoint(54, 394);
        const QRect besideRightBar(0, 0, 1464, 982);
        QTest::newRow("upper half of a bar at the right")
            << kPanel << QRect(1474, 100, 28, 28) << besideRightBar << QPoint(1118, 134);
        QTest::newRow("lower half of a bar at the right")
            << kPanel << QRect(1474, 900, 28, 28) << besideRightBar << QPoint(1118, 394);
        QTest::newRow("at the pointer in the middle of a bar at the left")
            << kPanel << QRect(20, 480, 1, 1) << besideLeftBar << QPoint(54, 476);
        QTest::newRow("a bar that reserved no space")
            << kPanel << QRect(700, 0, 24, 24) << screen << QPoint(542, 30);
        QTest::newRow("an item deep inside two bars")
            << kPanel << QRect(700, 10, 24, 24) << QRect(0, 80, 1512, 850) << QPoint(542, 86);

        const QRect leftOfPrimary(-1920, -200, 1920, 1080);
        QTest::newRow("item on a screen left of and above the origin")
            << kPanel << QRect(-30, -200, 24, 24) << leftOfPrimary << QPoint(-346, -170);
        QTest::newRow("item at the bottom of that screen")
            << kPanel << QRect(-1910, 850, 24, 24) << leftOfPrimary << QPoint(-1914, 344);
        const QRect rightOfPrimary(1512, 0, 1920, 1080);
        QTest::newRow("item at the left end of a second screen")
            << kPanel << QRect(1512, 1052, 24, 24) << rightOfPrimary << QPoint(1518, 546);

        QTest::newRow("higher than the available area: from its top")
            << QSize(340, 700) << QRect(700, 572, 28, 28) << QRect(0, 0, 1512, 572)
            << QPoint(544, 0);
        QTest::newRow("as high as the available area") << QSize(340, 572) << QRect(700, 572, 28, 28)
                                                       << QRect(0, 0, 1512, 572) << QPoint(544, 0);
        QTest::newRow("wider than the available area: from its left")
            << kPanel << QRect(100, 0, 24, 24) << QRect(20, 24, 300, 958) << QPoint(20, 30);
        QTest::newRow("the gap shrinks before the panel leaves the available area")
            << QSize(340, 950) << QRect(700, 0, 24, 24) << QRect(0, 24, 1512, 952)
            << QPoint(542, 25);
    }
    void thePanelIsBesideTheItemInTheAvailableArea() {
        QFETCH(QSize, panel);
        QFETCH(QRect, item);
        QFETCH(QRect, available);
        QFETCH(QPoint, origin);
        QCOMPARE(menuOrigin(panel, item, {available, available}), origin);
        const QRect shown(origin, panel.boundedTo(available.size()));
        QVERIFY(available.contains(shown));
    }

    void withoutAPlaceThePanelIsInTheCornerWhereTraysAre_data() {
        QTest::addColumn<QSize>("panel");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QPoint>("origin");
        const auto row = [](const char* name, const QRect& available, QPoint origin) {
            QTest::newRow(name) << kPanel << available << origin;
        };
        row("no bar: upper right", {0, 0, 1512, 982}, {1166, 6});
        row("top: upper right", {0, 24, 1512, 958}, {1166, 30});
        row("bottom: lower right", {0, 0, 1512, 954}, {1166, 448});
        row("left: lower left", {48, 0, 1464, 982}, {54, 476});
        row("right: lower right", {0, 0, 1464, 982}, {1118, 476});
        row("top and bottom: upper right", {0, 24, 1512, 930}, {1166, 30});
        row("top and left: upper right", {64, 24, 1448, 958}, {1166, 30});
        row("bottom and left: lower right", {64, 0, 1448, 954}, {1166, 448});
        row("left and right: lower left", {64, 0, 1400, 982}, {70, 476});
        row("all around: upper right", {48, 24, 1400, 900}, {1102, 30});
        QTest::newRow("larger than the available area")
            << kPanel << QRect(20, 24, 300, 400) << QPoint(20, 24);
        QTest::newRow("as high as the available area")
            << QSize(340, 954) << QRect(0, 0, 1512, 954) << QPoint(1166, 0);
    }
    void withoutAPlaceThePanelIsInTheCornerWhereTraysAre() {
        QFETCH(QSize, panel);
        QFETCH(QRect, available);
        for (const QPoint at : {QPoint(), QPoint(-1920, -200), QPoint(1512, 300)}) {
            const MenuScreen screen{QRect(0, 0, 1512, 982).translated(at),
                                    available.translated(at)};
            QTEST(menuOrigin(panel, std::nullopt, screen) - at, "origin");
        }
    }

    void onAMirroredScreenTheTraysAreAtTheLeft_data() {
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QPoint>("origin");
        QTest::newRow("no bar") << QRect(0, 0, 1512, 982) << QPoint(6, 6);
        QTest::newRow("top") << QRect(0, 24, 1512, 958) << QPoint(6, 30);
        QTest::newRow("bottom") << QRect(0, 0, 1512, 954) << QPoint(6, 448);
        QTest::newRow("left") << QRect(48, 0, 1464, 982) << QPoint(54, 476);
        QTest::newRow("right") << QRect(0, 0, 1464, 982) << QPoint(1118, 476);
    }
    void onAMirroredScreenTheTraysAreAtTheLeft() {
        QFETCH(QRect, available);
        QTEST(menuOrigin(kPanel, std::nullopt, {QRect(0, 0, 1512, 982), available, true}),
              "origin");
    }

    void thePanelIsOnTheItemsScreen_data() {
        QTest::addColumn<QSize>("wish");
        QTest::addColumn<Item>("item");
        QTest::addColumn<QRect>("frame");
        const QSize wish(340, 500);
        QTest::newRow("item on the first screen")
            << wish << Item(QRect(700, 0, 24, 24)) << QRect(542, 30, 340, 500);
        QTest::newRow("item on the second")
            << wish << Item(QRect(-30, -200, 24, 24)) << QRect(-346, -170, 340, 500);
        QTest::newRow("item in a bar of the second")
            << wish << Item(QRect(-34, 860, 24, 20)) << QRect(-346, 354, 340, 500);
        QTest::newRow("most of an item on the second")
            << wish << Item(QRect(-15, 0, 24, 24)) << QRect(-346, 30, 340, 500);
        QTest::newRow("item on no screen: the first")
            << wish << Item(QRect(9000, 0, 24, 24)) << QRect(1166, 30, 340, 500);
        QTest::newRow("no item: the first") << wish << Item() << QRect(1166, 30, 340, 500);
        QTest::newRow("higher than the first screen's available area")
            << QSize(340, 2000) << Item(QRect(700, 0, 24, 24)) << QRect(542, 30, 340, 946);
        QTest::newRow("larger than the second's in both directions")
            << QSize(3000, 2000) << Item(QRect(-30, -200, 24, 24))
            << QRect(-1914, -194, 1908, 1048);
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

    void aPointIsOnABarWhereOneHasReservedTheArea_data() {
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<bool>("isOn");
        QTest::newRow("bar at the top of the first screen") << QPoint(1400, 12) << true;
        QTest::newRow("its last row") << QPoint(0, 23) << true;
        QTest::newRow("the row below it") << QPoint(0, 24) << false;
        QTest::newRow("free bottom of the first screen") << QPoint(1400, 981) << false;
        QTest::newRow("bar at the bottom of the second") << QPoint(-10, 870) << true;
        QTest::newRow("the row above it") << QPoint(-10, 859) << false;
        QTest::newRow("the middle of the second") << QPoint(-900, 300) << false;
        QTest::newRow("on no screen") << QPoint(5000, 12) << false;
        QTest::newRow("beside the bar, on no screen") << QPoint(-10, 890) << false;
        QTest::newRow("a third screen without bars") << QPoint(1600, 2) << false;
    }
    void aPointIsOnABarWhereOneHasReservedTheArea() {
        QFETCH(QPoint, point);
        const std::vector<MenuScreen> screens{
            {.geometry = {0, 0, 1512, 982}, .available = {0, 24, 1512, 958}},
            {.geometry = {-1920, -200, 1920, 1080}, .available = {-1920, -200, 1920, 1060}},
            {.geometry = {1512, 0, 1920, 1080}, .available = {1512, 0, 1920, 1080}}};
        QTEST(isOnBar(point, screens), "isOn");
        QVERIFY(!isOnBar(point, {}));
    }

    void aClickOnTheItemIsOnABarIfAnyPositionIs_data() {
        QTest::addColumn<Point>("pointer");
        QTest::addColumn<Point>("reported");
        QTest::addColumn<Point>("click");
        const QPoint onBar(1400, 970);
        const QPoint alsoOnBar(700, 960);
        const QPoint elsewhere(300, 13);
        QTest::newRow("pointer and tray agree") << Point(onBar) << Point(onBar) << Point(onBar);
        QTest::newRow("pointer first") << Point(onBar) << Point(alsoOnBar) << Point(onBar);
        QTest::newRow("pressed with the keyboard")
            << Point(elsewhere) << Point(onBar) << Point(onBar);
        QTest::newRow("a bar that hides itself")
            << Point(elsewhere) << Point(QPoint(5, 5)) << Point(elsewhere);
        QTest::newRow("on Wayland") << Point() << Point(onBar) << Point(onBar);
        QTest::newRow("on Wayland in the tray's own coordinates")
            << Point() << Point(elsewhere) << Point();
        QTest::newRow("a tray without positions") << Point(onBar) << Point() << Point(onBar);
        QTest::newRow("a tray that reports none") << Point() << Point(QPoint()) << Point();
        QTest::newRow("no position at all") << Point() << Point() << Point();
    }
    void aClickOnTheItemIsOnABarIfAnyPositionIs() {
        QFETCH(Point, pointer);
        QFETCH(Point, reported);
        // Bars at the top and the bottom.
        const MenuScreen screen{QRect(0, 0, 1512, 982), QRect(0, 2, 1512, 952)};
        QTEST(clickOnItem(pointer, reported, {screen}), "click");
    }

    void marginsEndWhereTheScreenOrABarBegins_data() {
        QTest::addColumn<QRect>("panel");
        QTest::addColumn<QRect>("whole");
        QTest::newRow("room on all sides") << QRect(500, 100, 320, 500) << QRect(482, 90, 356, 536);
        QTest::newRow("below a bar") << QRect(500, 30, 320, 500) << QRect(482, 24, 356, 532);
        QTest::newRow("at the right edge")
            << QRect(1186, 30, 320, 500) << QRect(1168, 24, 344, 532);
        QTest::newRow("over the lower edge")
            << QRect(500, 476, 320, 500) << QRect(482, 466, 356, 516);
        QTest::newRow("as high as the screen")
            << QRect(500, 24, 320, 958) << QRect(482, 24, 356, 958);
        QTest::newRow("on the second screen")
            << QRect(-326, 354, 320, 500) << QRect(-344, 344, 344, 516);
        QTest::newRow("larger than the screen")
            << QRect(500, 0, 320, 990) << QRect(482, 0, 356, 990);
        QTest::newRow("on no screen") << QRect(5000, 0, 320, 500) << QRect(5000, 0, 320, 500);
    }
    void marginsEndWhereTheScreenOrABarBegins() {
        QFETCH(QRect, panel);
        const std::vector<MenuScreen> screens{
            {.geometry = {0, 0, 1512, 982}, .available = {0, 24, 1512, 958}},
            {.geometry = {-1920, -200, 1920, 1080}, .available = {-1920, -200, 1920, 1060}}};
        QTEST(withMargins(panel, QMargins(18, 10, 18, 26), screens), "whole");
    }

    void withoutAScreenThereIsNoPlace() { QVERIFY(!menuFrame(kPanel, std::nullopt, {})); }
};

BRIMLET_TEST(TestMenuPlacement, brimlet::NoApplication)
#include "tst_menuplacement.moc"
