#pragma once

#include <QString>

#import <AppKit/AppKit.h>

#include <cstdint>
#include <vector>

/// What tests set and read of the interfaces that shims.mm adds to GNUstep. Main thread only.
namespace brimlet::shims {

/// The addresses that the workspace was to open, in order.
[[nodiscard]] std::vector<QString>& openedAddresses();

/// What the workspace says of "Reduce motion".
void setReducesMotion(bool reduces);

/// The only number for which CGDisplayIsBuiltin is 1, which is none at first.
void setBuiltInDisplay(std::uint32_t number);

/// Replaces NSScreen's list; nil restores GNUstep's own. The elements need the methods in use only.
void setScreens(NSArray* screens);

/// What was done to give the front to the owner of the menu bar: "yield", then "activate".
[[nodiscard]] std::vector<QString>& frontRequests();

/// How many activities against App Nap have begun and not ended.
[[nodiscard]] int activitiesUnderWay();

/// The button of the only item in the status bar; nil without one.
[[nodiscard]] NSButton* statusButton();

/// What the owner of the view's only tooltip says, if that covers all of the view.
[[nodiscard]] QString toolTip(NSView* view);

/// Sends the Apple event to the handler that is installed for it. False when there is none.
[[nodiscard]] bool sendAppleEvent(AEEventClass eventClass, AEEventID eventID);
/// Removes all handlers of Apple events, as if another part of the program had replaced them.
void forgetAppleEventHandlers();

/// Handles AppKit's events that have arrived, and what its run loop has to do.
void handleEvents();

} // namespace brimlet::shims
