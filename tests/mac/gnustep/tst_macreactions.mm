#import "tests/mac/gnustep/shims.h"

#import "platform/mac/macreducemotion.h"
#import "platform/mac/macworkspace.h"
#import "platform/mac/reopening.h"
#include "tests/support/testprogram.h"

#include <QCoreApplication>
#include <QTest>

using namespace brimlet;

/// Answers and requests of the workspace and of the Apple event manager, both of which are shims.
class TestMacReactions final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { shims::openedAddresses().clear(); }

    void anAddressIsOpenedUnchanged_data() {
        QTest::addColumn<QString>("address");
        for (const char* const address :
             {"https://example.org", "https://example.org/a%20b%2Fc?q=%C3%A9&r=1%2B2#f%23",
              "https://EXAMPLE.org:8443/%7Euser/;p=1", "http://[::1]:80/", "mailto:a@example.org",
              "https://xn--bcher-kva.example/%e2%82%ac"}) {
            QTest::newRow(address) << QString::fromLatin1(address);
        }
    }
    void anAddressIsOpenedUnchanged() {
        QFETCH(QString, address);
        const auto url = Url::fromString(address);
        QVERIFY(url);
        QCOMPARE(url->absoluteString(), address);
        MacWorkspace().open(*url);
        QCOMPARE(shims::openedAddresses(), std::vector<QString>{address});
    }

    void anAddressThatTheSystemRefusesIsNotOpened() {
        const auto url = Url::fromString(u"https://[v1.a:b]/");
        QVERIFY(url);
        QVERIFY([NSURL URLWithString:@"https://[v1.a:b]/"] == nil);
        MacWorkspace().open(*url);
        QVERIFY(shims::openedAddresses().empty());
    }

    void reducedMotionIsReadAtEachCall() {
        const MacReduceMotion reduceMotion;
        QVERIFY(!reduceMotion.isOn());
        shims::setReducesMotion(true);
        QVERIFY(reduceMotion.isOn());
        shims::setReducesMotion(false);
        QVERIFY(!reduceMotion.isOn());
    }

    void appNapIsHeldOffWhileTheWorkspaceExists() {
        QCOMPARE(shims::activitiesUnderWay(), 0);
        {
            const MacWorkspace workspace;
            QCOMPARE(shims::activitiesUnderWay(), 1);
        }
        QCOMPARE(shims::activitiesUnderWay(), 0);
    }

    void openingTheProgramAgainIsReported() {
        QVERIFY(!shims::sendAppleEvent(kCoreEventClass, kAEReopenApplication));
        int calls = 0;
        onReopened([&] { ++calls; });
        QVERIFY(shims::sendAppleEvent(kCoreEventClass, kAEReopenApplication));
        QCOMPARE(calls, 1);

        // As AppKit does while the application launches.
        shims::forgetAppleEventHandlers();
        [NSNotificationCenter.defaultCenter
            postNotificationName:NSApplicationDidFinishLaunchingNotification
                          object:NSApp];
        QVERIFY(shims::sendAppleEvent(kCoreEventClass, kAEReopenApplication));
        QCOMPARE(calls, 2);
    }
};

BRIMLET_TEST(TestMacReactions, QCoreApplication)
#include "tst_macreactions.moc"
