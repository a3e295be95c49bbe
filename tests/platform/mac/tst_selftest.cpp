#include "platform/mac/rules/selftest.h"
#include "tests/support/fakes.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

/// Of which display 1 is built in.
FakeScreens fakeScreens(std::vector<Screen> list) {
    FakeScreens screens;
    screens.set(std::move(list), {1});
    return screens;
}

FakeScreens notchedLaptop() {
    return fakeScreens({{.number = 1,
                         .frame = {0, 0, 1512, 982},
                         .auxiliaryTopLeftArea = Rect{0, 944, 663, 38},
                         .auxiliaryTopRightArea = Rect{848, 944, 664, 38}}});
}

} // namespace

class TestSelfTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPanelWithTheWantedPropertiesPasses() {
        const SelfTest result = selfTest({}, notchedLaptop());
        QVERIFY(result.isPassed);
        QVERIFY(result.report.contains(QStringLiteral("  styleMask 0x80\n")));
        QVERIFY(result.report.contains(QStringLiteral("  collectionBehavior 0x51\n")));
        QVERIFY(result.report.contains(QStringLiteral("  level 25\n")));
        QVERIFY(result.report.contains(QStringLiteral("screen 1, built in\n"
                                                      "  frame 1512 x 982 at 0, 0\n"
                                                      "  left of the notch 663 x 38 at 0, 944\n"
                                                      "  right of it 664 x 38 at 848, 944\n")));
        QVERIFY(result.report.endsWith(QStringLiteral("passed\n")));
        QVERIFY(!result.report.contains(QStringLiteral("WRONG")));
    }

    void eachWrongPropertyFailsWithALine_data() {
        QTest::addColumn<PanelFacts>("panel");
        QTest::addColumn<QString>("line");
        const auto row = [](const char* line, auto change) {
            PanelFacts panel;
            change(panel);
            QTest::newRow(line) << panel << QString::fromLatin1(line);
        };
        row("styleMask 0x90  WRONG, should be 0x80", [](auto& p) { p.styleMask = 0x90; });
        row("collectionBehavior 0x151  WRONG, should be 0x51",
            [](auto& p) { p.collectionBehavior = 0x151; });
        row("level 3  WRONG, should be 25", [](auto& p) { p.level = 3; });
        row("opaque yes  WRONG, should be no", [](auto& p) { p.isOpaque = true; });
        row("clear background no  WRONG, should be yes",
            [](auto& p) { p.hasClearBackground = false; });
        row("hasShadow yes  WRONG, should be no", [](auto& p) { p.hasShadow = true; });
        row("hidesOnDeactivate yes  WRONG, should be no",
            [](auto& p) { p.hidesOnDeactivate = true; });
        row("floatingPanel no  WRONG, should be yes", [](auto& p) { p.isFloatingPanel = false; });
        row("canHide yes  WRONG, should be no", [](auto& p) { p.canHide = true; });
        row("canBecomeKeyWindow yes  WRONG, should be no", [](auto& p) { p.canBecomeKey = true; });
        row("canBecomeMainWindow yes  WRONG, should be no",
            [](auto& p) { p.canBecomeMain = true; });
        row("ignoresMouseEvents no  WRONG, should be yes",
            [](auto& p) { p.ignoresMouseEvents = false; });
        row("allowsToolTipsWhenApplicationIsInactive no  WRONG, should be yes",
            [](auto& p) { p.allowsToolTipsWhenInactive = false; });
    }
    void eachWrongPropertyFailsWithALine() {
        QFETCH(PanelFacts, panel);
        QFETCH(QString, line);
        const SelfTest result = selfTest(panel, notchedLaptop());
        QVERIFY(!result.isPassed);
        QVERIFY2(result.report.contains(line), qPrintable(result.report));
        QCOMPARE(result.report.count(QStringLiteral("WRONG")), 1);
        QVERIFY(result.report.endsWith(QStringLiteral("FAILED\n")));
    }

    void aMacWithoutANotchPasses() {
        Screen screen;
        screen.frame = {0, 0, 1920, 1080};
        const SelfTest result = selfTest({}, fakeScreens({screen}));
        QVERIFY(result.isPassed);
        QVERIFY(result.report.contains(QStringLiteral("screen without number\n")));
        QVERIFY(result.report.contains(QStringLiteral("  left of the notch none\n")));
    }

    void aMacWithoutScreensFails() { QVERIFY(!selfTest({}, fakeScreens({})).isPassed); }
};

BRIMLET_TEST(TestSelfTest, brimlet::NoApplication)
#include "tst_selftest.moc"
