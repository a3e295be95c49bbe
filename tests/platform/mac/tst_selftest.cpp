#include "platform/mac/rules/macoverlaywindow.h"
#include "platform/mac/rules/selftest.h"
#include "tests/platform/mac/fakepanels.h"
#include "tests/support/fakes.h"
#include "tests/support/testprogram.h"

#include <QApplication>
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

/// Everything as wanted.
SelfTestFacts goodFacts() {
    return {.panel = {},
            .clickPanels = {kClickPanelFacts, kClickPanelFacts},
            .clicks = {{QStringLiteral("shown, left capsule"), true, true},
                       {QStringLiteral("shown, notch"), false, false}},
            .statusItem = Rect{1300, 958, 24, 24},
            .keepsSecrets = true};
}

} // namespace

class TestSelfTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everythingAsWantedPasses() {
        const SelfTest result = selfTest(goodFacts(), notchedLaptop());
        QVERIFY(result.isPassed);
        QVERIFY(result.report.contains(QStringLiteral("  styleMask 0x80\n")));
        QVERIFY(result.report.contains(QStringLiteral("  collectionBehavior 0x51\n")));
        QVERIFY(result.report.contains(QStringLiteral("  level 25\n")));
        QVERIFY(result.report.contains(QStringLiteral("screen 1, built in\n"
                                                      "  frame 1512 x 982 at 0, 0\n"
                                                      "  left of the notch 663 x 38 at 0, 944\n"
                                                      "  right of it 664 x 38 at 848, 944\n")));
        QVERIFY(result.report.contains(QStringLiteral("clicks\n"
                                                      "  shown, left capsule taken\n"
                                                      "  shown, notch let through\n")));
        QVERIFY(result.report.contains(QStringLiteral("status item 24 x 24 at 1300, 958\n")));
        QVERIFY(result.report.contains(QStringLiteral("keychain item written, read, removed\n")));
        QVERIFY(result.report.endsWith(QStringLiteral("passed\n")));
        QVERIFY(!result.report.contains(QStringLiteral("WRONG")));
    }

    void eachFaultFailsWithALine_data() {
        QTest::addColumn<SelfTestFacts>("facts");
        QTest::addColumn<QString>("line");
        const auto factRow = [](const char* line, auto change) {
            SelfTestFacts facts = goodFacts();
            change(facts);
            QTest::newRow(line) << facts << QString::fromLatin1(line);
        };
        const auto row = [&factRow](const char* line, auto change) {
            factRow(line, [&](SelfTestFacts& facts) { change(facts.panel); });
        };
        factRow("ignoresMouseEvents yes  WRONG, should be no",
                [](auto& f) { f.clickPanels.back().ignoresMouseEvents = true; });
        factRow("shown, left capsule let through  WRONG, should be taken",
                [](auto& f) { f.clicks.front().isFound = false; });
        factRow("shown, notch taken  WRONG, should be let through",
                [](auto& f) { f.clicks.back().isFound = true; });
        factRow("status item WRONG, there is none", [](auto& f) { f.statusItem.reset(); });
        factRow("keychain item WRONG, there is none", [](auto& f) { f.keepsSecrets = false; });
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
    void eachFaultFailsWithALine() {
        QFETCH(SelfTestFacts, facts);
        QFETCH(QString, line);
        const SelfTest result = selfTest(facts, notchedLaptop());
        QVERIFY(!result.isPassed);
        QVERIFY2(result.report.contains(line), qPrintable(result.report));
        QCOMPARE(result.report.count(QStringLiteral("WRONG")), 1);
        QVERIFY(result.report.endsWith(QStringLiteral("FAILED\n")));
    }

    void aMacWithoutANotchPasses() {
        Screen screen;
        screen.frame = {0, 0, 1920, 1080};
        const SelfTest result = selfTest(goodFacts(), fakeScreens({screen}));
        QVERIFY(result.isPassed);
        QVERIFY(result.report.contains(QStringLiteral("screen without number\n")));
        QVERIFY(result.report.contains(QStringLiteral("  left of the notch none\n")));
    }

    void aMacWithoutScreensFails() { QVERIFY(!selfTest(goodFacts(), fakeScreens({})).isPassed); }

    void clicksAreTriedOnAndBesideTheCapsulesOfTheBuiltInScreen() {
        FakePanels panels;
        MacOverlayWindow overlay(panels, std::make_unique<QWidget>(), {});
        Screen other;
        other.number = 2;
        other.frame = {1512, 0, 1920, 1080};
        const FakeScreens screens = fakeScreens({other, notchedLaptop().list().front()});
        int settled = 0;
        const auto facts = tryClicks(overlay, screens, [&settled] { ++settled; });
        QCOMPARE(facts.size(), 14U);
        for (const ClickFact& fact : facts) {
            QCOMPARE(fact.isFound, fact.isWanted);
            QCOMPARE(fact.isWanted, fact.place == QStringLiteral("shown, left capsule") ||
                                        fact.place == QStringLiteral("shown, right capsule"));
        }
        QCOMPARE(settled, 2);
        QCOMPARE(panels.all.front()->frame, (Rect{544, 942, 424, 40}));
        QVERIFY(!panels.all.front()->isShown);
    }

    void noClickIsTriedWithoutAScreen() {
        FakePanels panels;
        MacOverlayWindow overlay(panels, std::make_unique<QWidget>(), {});
        QVERIFY(tryClicks(overlay, fakeScreens({}), [] {}).empty());
    }

    void theSecretStoreIsTriedWithAnItemThatIsRemovedAgain() {
        FakeSecretStore secrets;
        QVERIFY(keepsSecrets(secrets));
        QCOMPARE(secrets.replacements, 3);
        QCOMPARE(secrets.count(QStringLiteral("app.brimlet.host.self-test"),
                               QStringLiteral("self-test")),
                 0);
        secrets.failure = SecretError::Locked;
        QVERIFY(!keepsSecrets(secrets));
    }
};

BRIMLET_TEST(TestSelfTest, QApplication)
#include "tst_selftest.moc"
