#import "tests/mac/gnustep/shims.h"

#import "platform/mac/macscreens.h"
#include "tests/support/testprogram.h"

#include <QCoreApplication>
#include <QTest>

using namespace brimlet;

/// A screen that says what a test wants.
@interface BrimletTestScreen : NSObject {
@public
    NSRect frame;
    NSDictionary* deviceDescription;
    NSRect auxiliaryTopLeftArea;
    NSRect auxiliaryTopRightArea;
}
@end

@implementation BrimletTestScreen

- (NSRect)frame {
    return frame;
}

- (NSDictionary*)deviceDescription {
    return deviceDescription;
}

- (NSRect)auxiliaryTopLeftArea {
    return auxiliaryTopLeftArea;
}

- (NSRect)auxiliaryTopRightArea {
    return auxiliaryTopRightArea;
}

@end

/// What becomes of the system's description of screens.
class TestMacScreenList final : public QObject {
    Q_OBJECT

    static BrimletTestScreen* screen(NSRect frame, id number) {
        auto* const made = [[[BrimletTestScreen alloc] init] autorelease];
        made->frame = frame;
        made->deviceDescription =
            [(number == nil ? [NSDictionary dictionary]
                            : [NSDictionary dictionaryWithObject:number
                                                          forKey:@"NSScreenNumber"]) retain];
        return made;
    }

private Q_SLOTS:
    void cleanup() { shims::setScreens(nil); }

    void framesAndStripsAreCopiedInTheirOrder() {
        auto* const notched = screen(NSMakeRect(0, 0, 1512, 982), [NSNumber numberWithInt:1]);
        notched->auxiliaryTopLeftArea = NSMakeRect(0, 950, 664, 32);
        notched->auxiliaryTopRightArea = NSMakeRect(848, 951, 663, 31);
        auto* const plain = screen(NSMakeRect(-1920, 12.5, 1920, 1080),
                                   [NSNumber numberWithUnsignedInt:4294967295U]);
        shims::setScreens([NSArray arrayWithObjects:notched, plain, nil]);
        const auto screens = MacScreens().list();
        QCOMPARE(screens.size(), 2U);
        QCOMPARE(screens[0].number, std::optional(1U));
        QCOMPARE(screens[0].frame, (Rect{0, 0, 1512, 982}));
        QCOMPARE(screens[0].auxiliaryTopLeftArea, (std::optional<Rect>({0, 950, 664, 32})));
        QCOMPARE(screens[0].auxiliaryTopRightArea, (std::optional<Rect>({848, 951, 663, 31})));
        QCOMPARE(screens[1].number, std::optional(4294967295U));
        QCOMPARE(screens[1].frame, (Rect{-1920, 12.5, 1920, 1080}));
        QVERIFY(!screens[1].auxiliaryTopLeftArea);
        QVERIFY(!screens[1].auxiliaryTopRightArea);
    }

    void theListIsReadAtEachCall() {
        const MacScreens screens;
        shims::setScreens([NSArray array]);
        QVERIFY(screens.list().empty());
        shims::setScreens([NSArray arrayWithObject:screen(NSMakeRect(0, 0, 1, 1), nil)]);
        QCOMPARE(screens.list().size(), 1U);
    }

    void aNumberIsAbsentUnlessItIsANumber_data() {
        QTest::addColumn<void*>("described");
        QTest::newRow("missing") << static_cast<void*>(nil);
        QTest::newRow("text") << static_cast<void*>([@"1" retain]);
        QTest::newRow("negative") << static_cast<void*>([[NSNumber numberWithInt:-1] retain]);
        QTest::newRow("fraction") << static_cast<void*>([[NSNumber numberWithDouble:1.5] retain]);
        QTest::newRow("null") << static_cast<void*>([NSNull null]);
    }
    void aNumberIsAbsentUnlessItIsANumber() {
        QFETCH(void*, described);
        shims::setScreens([NSArray
            arrayWithObject:screen(NSMakeRect(0, 0, 1512, 982), static_cast<id>(described))]);
        const auto screens = MacScreens().list();
        QCOMPARE(screens.size(), 1U);
        QVERIFY(!screens[0].number);
        QCOMPARE(screens[0].frame, (Rect{0, 0, 1512, 982}));
    }

    void theSystemSaysWhichDisplayIsBuiltIn() {
        shims::setBuiltInDisplay(7);
        QVERIFY(MacScreens().isBuiltIn(7));
        QVERIFY(!MacScreens().isBuiltIn(8));
    }
};

BRIMLET_TEST(TestMacScreenList, QCoreApplication)
#include "tst_macscreenlist.moc"
