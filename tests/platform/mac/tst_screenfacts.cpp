#include "platform/mac/rules/screenfacts.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace brimlet;

Q_DECLARE_METATYPE(Rect)

class TestScreenFacts final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyAWholeNumberOf32BitsIsADisplayNumber_data() {
        QTest::addColumn<double>("described");
        QTest::addColumn<bool>("isNumber");
        QTest::newRow("zero") << 0.0 << true;
        QTest::newRow("one") << 1.0 << true;
        QTest::newRow("a display's usual one") << 69733632.0 << true;
        QTest::newRow("the greatest") << 4294967295.0 << true;
        QTest::newRow("beyond 32 bits") << 4294967296.0 << false;
        QTest::newRow("negative") << -1.0 << false;
        QTest::newRow("fractional") << 1.5 << false;
        QTest::newRow("a fraction above the greatest") << 4294967295.5 << false;
        QTest::newRow("no number") << std::nan("") << false;
        QTest::newRow("endless") << std::numeric_limits<double>::infinity() << false;
    }
    void onlyAWholeNumberOf32BitsIsADisplayNumber() {
        QFETCH(double, described);
        QFETCH(bool, isNumber);
        const auto number = displayNumber(described);
        QCOMPARE(number.has_value(), isNumber);
        if (number) {
            QCOMPARE(static_cast<double>(*number), described);
        }
    }

    void aScreenWithoutADescribedNumberHasNone() { QVERIFY(!displayNumber(std::nullopt)); }

    void anEmptyRectangleMeansNoStrip_data() {
        QTest::addColumn<Rect>("area");
        QTest::addColumn<bool>("isStrip");
        QTest::newRow("a strip") << Rect{0, 944, 663, 38} << true;
        QTest::newRow("on a screen left of the primary one") << Rect{-1512, 944, 663, 38} << true;
        QTest::newRow("less than a point") << Rect{0, 944, 0.5, 0.5} << true;
        QTest::newRow("zero throughout") << Rect{} << false;
        QTest::newRow("without width, somewhere") << Rect{1512, 944, 0, 38} << false;
        QTest::newRow("without height, somewhere") << Rect{0, 982, 1512, 0} << false;
        QTest::newRow("no numbers") << Rect{0, 0, std::nan(""), std::nan("")} << false;
    }
    void anEmptyRectangleMeansNoStrip() {
        QFETCH(Rect, area);
        QFETCH(bool, isStrip);
        QCOMPARE(stripBesideNotch(area), isStrip ? std::optional(area) : std::nullopt);
    }
};

BRIMLET_TEST(TestScreenFacts, brimlet::NoApplication)
#include "tst_screenfacts.moc"
