#include "host/notch.h"
#include "tests/support/fakes.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

Screen plainScreen(std::optional<std::uint32_t> number, double x) {
    Screen screen;
    screen.number = number;
    screen.frame = {x, 0, 1000, 800};
    return screen;
}

Screen screenWithGap(double gap) {
    Screen screen = plainScreen(1, 0);
    screen.auxiliaryTopLeftArea = Rect{0, 768, 400, 32};
    screen.auxiliaryTopRightArea = Rect{400 + gap, 768, 400, 32};
    return screen;
}

} // namespace

class TestNotch final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theGapMustBeWiderThanTwentyPoints_data() {
        QTest::addColumn<double>("gap");
        QTest::addColumn<bool>("isNotch");
        QTest::newRow("19.9") << 19.9 << false;
        QTest::newRow("exactly 20") << 20.0 << false;
        QTest::newRow("20.1") << 20.1 << true;
        QTest::newRow("184") << 184.0 << true;
        QTest::newRow("overlapping strips") << -10.0 << false;
    }
    void theGapMustBeWiderThanTwentyPoints() {
        QFETCH(double, gap);
        QTEST(hasNotch(screenWithGap(gap)), "isNotch");
    }

    void withoutABuiltInScreenThereIsNoNotch() { QVERIFY(!hasNotch(std::nullopt)); }

    void oneStripAloneIsNoNotch() {
        Screen left = screenWithGap(184);
        left.auxiliaryTopRightArea.reset();
        QVERIFY(!hasNotch(left));
        Screen right = screenWithGap(184);
        right.auxiliaryTopLeftArea.reset();
        QVERIFY(!hasNotch(right));
    }

    void theFirstBuiltInScreenIsTaken() {
        FakeScreens screens;
        screens.set({plainScreen(7, 0), plainScreen(8, 1000), plainScreen(9, 2000)}, {8, 9});
        const auto found = builtInScreen(screens);
        QVERIFY(found);
        QCOMPARE(found->frame.x, 1000.0);
    }

    void ofTwoScreensWhereOnlyTheSecondIsBuiltInItsStripsAreUsed() {
        Screen external = screenWithGap(300);
        external.number = 4;
        Screen own = screenWithGap(10);
        own.number = 5;
        FakeScreens screens;
        screens.set({external, own}, {5});
        QVERIFY(!hasNotch(builtInScreen(screens)));
        own = screenWithGap(184);
        own.number = 5;
        external.auxiliaryTopLeftArea.reset();
        screens.set({external, own}, {5});
        QVERIFY(hasNotch(builtInScreen(screens)));
    }

    void aScreenWithoutANumberIsCheckedAsDisplayZero() {
        std::vector<std::uint32_t> asked;
        const auto isBuiltIn = [&](std::uint32_t number) {
            asked.push_back(number);
            return number == 0;
        };
        const auto found =
            builtInScreen({plainScreen(3, 0), plainScreen(std::nullopt, 1000)}, isBuiltIn);
        QVERIFY(found);
        QCOMPARE(found->frame.x, 1000.0);
        QCOMPARE(asked, (std::vector<std::uint32_t>{3, 0}));
    }

    void withoutScreensThereIsNoBuiltInOne() {
        const FakeScreens screens;
        QVERIFY(!builtInScreen(screens));
    }
};

BRIMLET_TEST(TestNotch, brimlet::NoApplication)
#include "tst_notch.moc"
