#include "overlay/overlaylayout.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

std::optional<SlotCreative> creative(const QString& brand, const QString& tagline) {
    SlotCreative c;
    c.brandName = brand;
    c.tagline = tagline;
    return c;
}

} // namespace

class TestLayout final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPillWithAnyTextIsWide() {
        const auto text = QStringLiteral("x");
        const auto widths = [](const std::optional<SlotCreative>& pill) {
            const OverlayLayout row = overlayLayout(428, 184, pill, pill);
            return std::pair(row.left.width, row.right.width);
        };
        const std::pair wide(108.0, 108.0);
        const std::pair narrow(36.0, 36.0);
        QVERIFY(widths(creative(text, {})) == wide);
        QVERIFY(widths(creative({}, text)) == wide);
        QVERIFY(widths(creative(text, text)) == wide);
        QVERIFY(widths(creative({}, {})) == narrow);
        QVERIFY(widths(std::nullopt) == narrow);
    }

    void twoWidePillsLeaveEightPointsOnEitherSide() {
        const auto pill = creative(QStringLiteral("x"), {});
        const OverlayLayout row = overlayLayout(184 + 244, 184, pill, pill);
        QCOMPARE(row.left, (PillFrame{8, 1, 108, 24}));
        QCOMPARE(row.right, (PillFrame{8 + 108 + 6 + 184 + 6, 1, 108, 24}));
        QCOMPARE(row.right.x + row.right.width, 428.0 - 8);
    }

    void twoEmptySlotsAre36PointsWide() {
        const OverlayLayout row = overlayLayout(428, 184, std::nullopt, std::nullopt);
        QCOMPARE(row.left, (PillFrame{80, 1, 36, 24}));
        QCOMPARE(row.right, (PillFrame{80 + 36 + 6 + 184 + 6, 1, 36, 24}));
    }

    void pillsOfDifferentWidthsShiftTheGap() {
        const auto pill = creative(QStringLiteral("x"), {});
        const OverlayLayout row = overlayLayout(428, 184, std::nullopt, pill);
        const double gapCentre = row.left.x + row.left.width + 6 + 92;
        QCOMPARE(gapCentre, 214.0 - 36);
    }
};

BRIMLET_TEST(TestLayout, brimlet::NoApplication)
#include "tst_layout.moc"
