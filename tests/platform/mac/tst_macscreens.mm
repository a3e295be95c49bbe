#import "platform/mac/macscreens.h"
#include "tests/support/testprogram.h"

#include <QGuiApplication>
#include <QTest>

using namespace brimlet;

/// With the displays of the machine that runs the test.
class TestMacScreens final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyScreenHasASizeAndANumber() {
        const auto screens = MacScreens().list();
        QVERIFY(!screens.empty());
        QCOMPARE(screens.front().frame.x, 0.0);
        QCOMPARE(screens.front().frame.y, 0.0);
        for (const Screen& screen : screens) {
            QVERIFY(screen.frame.width > 0);
            QVERIFY(screen.frame.height > 0);
            QVERIFY(screen.number.has_value());
        }
    }

    void aStripIsAtTheTopOfItsScreen() {
        for (const Screen& screen : MacScreens().list()) {
            QCOMPARE(screen.auxiliaryTopLeftArea.has_value(),
                     screen.auxiliaryTopRightArea.has_value());
            if (!screen.auxiliaryTopLeftArea) {
                continue;
            }
            for (const auto& strip : {screen.auxiliaryTopLeftArea, screen.auxiliaryTopRightArea}) {
                QCOMPARE(strip->y + strip->height, screen.frame.y + screen.frame.height);
            }
        }
    }
};

BRIMLET_TEST(TestMacScreens, QGuiApplication)
#include "tst_macscreens.moc"
