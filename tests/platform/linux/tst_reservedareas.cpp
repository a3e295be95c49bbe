#include "platform/linux/reservedareas.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

// A laptop's screen, and a larger one at its right that begins higher: the root window is
// 3432 by 1200.
constexpr QSize kRoot(3432, 1200);
constexpr QRect kLaptop(0, 218, 1512, 982);
constexpr QRect kLarge(1512, 0, 1920, 1200);

ReservedAreas withStruts(std::vector<Strut> struts) {
    return {kRoot, {0, 0, 3432, 1200}, {}, std::move(struts)};
}

} // namespace

Q_DECLARE_METATYPE(brimlet::ReservedAreas)

class TestReservedAreas final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachMonitorLosesWhatItsBarsReserve_data() {
        QTest::addColumn<ReservedAreas>("areas");
        QTest::addColumn<QRect>("laptop");
        QTest::addColumn<QRect>("large");
        const auto row = [](const char* name, const ReservedAreas& areas, const QRect& laptop,
                            const QRect& large) {
            QTest::newRow(name) << areas << laptop << large;
        };
        row("nothing known", {kRoot, {}, {}, {}}, kLaptop, kLarge);
        row("no bar", withStruts({}), kLaptop, kLarge);
        row("bottom of the laptop", withStruts({{0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0, 1511}}),
            {0, 218, 1512, 954}, kLarge);
        row("bottom of the large one", withStruts({{0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 1512, 3431}}),
            kLaptop, {1512, 0, 1920, 1172});
        row("bottom of both", withStruts({{0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0, 3431}}),
            {0, 218, 1512, 954}, {1512, 0, 1920, 1172});
        row("top of the laptop, which is not the root window's",
            withStruts({{0, 0, 246, 0, 0, 0, 0, 0, 0, 1511, 0, 0}}), {0, 246, 1512, 954}, kLarge);
        row("top of the large one", withStruts({{0, 0, 24, 0, 0, 0, 0, 0, 1512, 3431, 0, 0}}),
            kLaptop, {1512, 24, 1920, 1176});
        row("left of the laptop", withStruts({{48, 0, 0, 0, 218, 1199, 0, 0, 0, 0, 0, 0}}),
            {48, 218, 1464, 982}, kLarge);
        row("left of the large one, between the two",
            withStruts({{1560, 0, 0, 0, 0, 1199, 0, 0, 0, 0, 0, 0}}), kLaptop,
            {1560, 0, 1872, 1200});
        row("right of the laptop, between the two",
            withStruts({{0, 1968, 0, 0, 0, 0, 218, 1199, 0, 0, 0, 0}}), {0, 218, 1464, 982},
            kLarge);
        row("right of the large one", withStruts({{0, 48, 0, 0, 0, 0, 0, 1199, 0, 0, 0, 0}}),
            kLaptop, {1512, 0, 1872, 1200});
        row("two bars at one edge: the wider",
            withStruts({{0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0, 700},
                        {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 701, 1511}}),
            {0, 218, 1512, 942}, kLarge);
        row("top and bottom of the large one",
            withStruts({{0, 0, 24, 0, 0, 0, 0, 0, 1512, 3431, 0, 0},
                        {0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 1512, 3431}}),
            kLaptop, {1512, 24, 1920, 1148});
        row("a strut that reserves all", withStruts({{0, 0, 0, 1200, 0, 0, 0, 0, 0, 0, 0, 3431}}),
            kLaptop, kLarge);
        row("only the work area of all monitors", {kRoot, {0, 0, 3432, 1156}, {}, {}},
            {0, 218, 1512, 938}, {1512, 0, 1920, 1156});
        row("a work area without one of the monitors", {kRoot, {1560, 0, 1872, 1200}, {}, {}},
            kLaptop, {1560, 0, 1872, 1200});
        row("the monitors' own work areas count most",
            {kRoot,
             {0, 0, 3432, 954},
             {{0, 245, 1512, 931}, {1512, 0, 1920, 1200}},
             {{0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0, 3431}}},
            {0, 245, 1512, 931}, kLarge);
        row("an own work area of only one",
            {kRoot, {}, {{0, 245, 1512, 931}}, {{0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0, 3431}}},
            {0, 245, 1512, 931}, {1512, 0, 1920, 1172});
    }
    void eachMonitorLosesWhatItsBarsReserve() {
        QFETCH(ReservedAreas, areas);
        QTEST(freeArea(kLaptop, false, areas), "laptop");
        QTEST(freeArea(kLarge, false, areas), "large");
    }

    void theOnlyMonitorHasTheWorkArea() {
        const QRect monitor(0, 0, 1512, 982);
        const Strut bottom{0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0, 1511};
        QCOMPARE(freeArea(monitor, true, {monitor.size(), {0, 0, 1512, 938}, {}, {bottom}}),
                 QRect(0, 0, 1512, 938));
        QCOMPARE(freeArea(monitor, true, {monitor.size(), {}, {}, {}}), monitor);
        QCOMPARE(freeArea(monitor, true, {monitor.size(), {0, 982, 1512, 100}, {}, {}}), monitor);
    }

    void theOnlyMonitorLosesWhatIsKnown_data() {
        QTest::addColumn<ReservedAreas>("areas");
        QTest::addColumn<QRect>("free");
        const Strut bottom{0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0, 1511};
        QTest::newRow("nothing") << ReservedAreas{{1512, 982}, {}, {}, {}}
                                 << QRect(0, 0, 1512, 982);
        QTest::newRow("a work area")
            << ReservedAreas{{1512, 982}, {0, 24, 1512, 958}, {}, {}} << QRect(0, 24, 1512, 958);
        QTest::newRow("a strut alone")
            << ReservedAreas{{1512, 982}, {}, {}, {bottom}} << QRect(0, 0, 1512, 954);
        QTest::newRow("both: the work area")
            << ReservedAreas{{1512, 982}, {0, 24, 1512, 958}, {}, {bottom}}
            << QRect(0, 24, 1512, 958);
    }
    void theOnlyMonitorLosesWhatIsKnown() {
        QFETCH(ReservedAreas, areas);
        QTEST(freeArea(QRect(0, 0, 1512, 982), true, areas), "free");
    }
};

BRIMLET_TEST(TestReservedAreas, brimlet::NoApplication)
#include "tst_reservedareas.moc"
