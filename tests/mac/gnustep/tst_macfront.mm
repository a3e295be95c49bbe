#import "tests/mac/gnustep/shims.h"

#import "platform/mac/macmenuwindow.h"
#include "tests/support/fakes.h"
#include "tests/support/plaincorners.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QTest>

using namespace brimlet;

/// Who has the front after the panel.
class TestMacFront final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFrontIsGivenBackByAnActiveProgramOnly() {
        const FakeReduceMotion reduceMotion;
        MacMenuWindow window(std::make_unique<QWidget>(), reduceMotion, plainCorners);
        [NSApp deactivate];
        QVERIFY(!NSApp.active);
        window.present({});
        window.dismiss();
        QCOMPARE(shims::frontRequests(), std::vector<QString>());

        window.present({});
        [NSApp activateIgnoringOtherApps:YES];
        QVERIFY(NSApp.active);
        window.dismiss();
        QCOMPARE(shims::frontRequests(),
                 std::vector<QString>({QStringLiteral("yield"), QStringLiteral("activate")}));
    }
};

BRIMLET_TEST(TestMacFront, QApplication)
#include "tst_macfront.moc"
