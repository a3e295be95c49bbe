#import "tests/mac/gnustep/shims.h"

#import "platform/mac/macstatusitem.h"
#import "platform/mac/nativepanel.h"
#import "platform/mac/nativetext.h"
#include "tests/support/pointer.h"
#include "tests/support/testprogram.h"

#include <QCoreApplication>
#include <QTest>

using namespace brimlet;

/// The item in a shim of the status bar, with a real pointer.
class TestMacStatusItem final : public QObject {
    Q_OBJECT

    /// On the X server's screen, whose y points down.
    [[nodiscard]] static QPoint centerOfButton() {
        const NSRect frame = [shims::statusButton() window].frame;
        const NSRect screen = [[NSScreen.screens objectAtIndex:0] frame];
        return QPointF(NSMidX(frame), screen.size.height - NSMidY(frame)).toPoint();
    }

private Q_SLOTS:
    void itsImageIsATemplateOfTheSystemsSymbol() {
        const MacStatusItem item;
        QCOMPARE(fromNative([[shims::statusButton() image] name]),
                 QStringLiteral("laptopcomputer template"));
    }

    void aPressHasThePlaceOfTheButtonsWindow() {
        MacStatusItem item;
        const Rect frame = rectFrom([shims::statusButton() window].frame);
        QVERIFY(frame.width > 0);
        QCOMPARE(item.place(), std::optional(frame));
        std::vector<std::optional<Rect>> presses;
        item.observePresses([&](const std::optional<Rect>& place) { presses.push_back(place); });
        click(centerOfButton());
        QTRY_COMPARE(presses.size(), 1U);
        QCOMPARE(presses[0], std::optional(frame));
    }

    void eachOfTwoQuickClicksIsAPress() {
        MacStatusItem item;
        int presses = 0;
        item.observePresses([&](const std::optional<Rect>& /*place*/) { ++presses; });
        click(centerOfButton());
        click(centerOfButton()); // within the time of a double click
        QTRY_COMPARE(presses, 2);
    }

    void itIsPressedWhenTheButtonGoesDown() {
        MacStatusItem item;
        int presses = 0;
        item.observePresses([&](const std::optional<Rect>& /*place*/) { ++presses; });
        moveTo(centerOfButton());
        xdotool({QStringLiteral("mousedown"), QStringLiteral("1"),
                 QStringLiteral("mousemove_relative"), QStringLiteral("0"), QStringLiteral("200"),
                 QStringLiteral("mouseup"), QStringLiteral("1")});
        QTRY_COMPARE(presses, 1);
    }

    void anAccessibilityPressIsAPressWithoutAnEvent() {
        MacStatusItem item;
        int presses = 0;
        item.observePresses([&](const std::optional<Rect>& /*place*/) { ++presses; });
        NSButton* const button = shims::statusButton();
        QVERIFY([button sendAction:button.action to:button.target]);
        QCOMPARE(presses, 1);
        [button performClick:nil];
        QCOMPARE(presses, 2);
    }

    void itHasNoPlaceWhileItsWindowHasNoSize() {
        const MacStatusItem item;
        [[shims::statusButton() window] setFrame:NSZeroRect display:NO];
        // The X server has no windows without a size.
        if ([shims::statusButton() window].frame.size.width > 0) {
            [shims::statusButton() removeFromSuperview];
        }
        QCOMPARE(item.place(), std::optional<Rect>());
    }

    void theToolTipIsTheText() {
        MacStatusItem item;
        item.setToolTip(QStringLiteral("T\u00f6ken \U0001f4bb"));
        QCOMPARE(fromNative([shims::statusButton() toolTip]),
                 QStringLiteral("T\u00f6ken \U0001f4bb"));
    }

    void itLeavesTheBarAndIsNotPressedAnyMore() {
        NSButton* button = nil;
        int calls = 0;
        {
            MacStatusItem item;
            item.observePresses([&](const std::optional<Rect>& /*place*/) { ++calls; });
            button = shims::statusButton();
        }
        QVERIFY(shims::statusButton() == nil);
        [button performClick:nil];
        QCOMPARE(calls, 0);
    }
};

BRIMLET_TEST(TestMacStatusItem, QCoreApplication)
#include "tst_macstatusitem.moc"
