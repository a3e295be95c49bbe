#import "tests/mac/gnustep/shims.h"

#import "platform/mac/nativetext.h"

#include <objc/runtime.h>

#include <map>
#include <optional>
#include <utility>

// Some replace what GNUstep has.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

// The system's sleep of screens and reduced motion: AppKit on GNUstep knows neither.
NSString* const NSWorkspaceScreensDidSleepNotification = @"NSWorkspaceScreensDidSleepNotification";
NSString* const NSWorkspaceScreensDidWakeNotification = @"NSWorkspaceScreensDidWakeNotification";
NSString* const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification =
    @"NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification";

namespace {

bool reducesMotion = false;
std::optional<std::uint32_t> builtInDisplay;
NSArray* screens = nil;
int activities = 0;
std::map<std::pair<AEEventClass, AEEventID>, std::pair<id, SEL>> appleEventHandlers;

std::map<NSStatusItem*, NSStatusBarButton*>& buttonsOfItems() {
    static std::map<NSStatusItem*, NSStatusBarButton*> buttons;
    return buttons;
}

/// The rect and the owner of each tooltip.
std::map<NSView*, std::vector<std::pair<NSRect, id>>>& toolTips() {
    static std::map<NSView*, std::vector<std::pair<NSRect, id>>> all;
    return all;
}

id screensOfTest(id /*self*/, SEL /*selector*/, ...) {
    return screens;
}

} // namespace

unsigned int CGDisplayIsBuiltin(std::uint32_t display) {
    return builtInDisplay == display ? 1 : 0;
}

// GNUstep's main queue runs blocks on a thread of its own. Apple's runs them on the main thread, at
// once when that is the calling one.
@interface BrimletMainQueue : NSOperationQueue
@end

@implementation BrimletMainQueue

- (void)addOperation:(NSOperation*)operation {
    [operation performSelectorOnMainThread:@selector(start) withObject:nil waitUntilDone:YES];
}

@end

@implementation NSOperationQueue (BrimletShims)

+ (NSOperationQueue*)mainQueue {
    static BrimletMainQueue* const queue = [[BrimletMainQueue alloc] init];
    return queue;
}

@end

// GNUstep's center for several programs starts a daemon, which outlives the test.
@implementation NSDistributedNotificationCenter (BrimletShims)

+ (NSNotificationCenter*)notificationCenterForType:(NSString*)type {
    return nil;
}

@end

@implementation NSWorkspaceOpenConfiguration

+ (instancetype)configuration {
    return [[[self alloc] init] autorelease];
}

@end

// The menu bar of GNUstep belongs to no other program.
@interface BrimletMenuBarOwner : NSObject
@end

@implementation BrimletMenuBarOwner

- (BOOL)activateFromApplication:(NSRunningApplication*)application options:(NSUInteger)options {
    brimlet::shims::frontRequests().push_back(QStringLiteral("activate"));
    return YES;
}

@end

// Since macOS 14 the front is given, not taken.
@implementation NSApplication (BrimletShims)

- (void)yieldActivationToApplication:(NSRunningApplication*)application {
    brimlet::shims::frontRequests().push_back(
        (id)application == [NSWorkspace.sharedWorkspace menuBarOwningApplication]
            ? QStringLiteral("yield")
            : QStringLiteral("yield to another"));
}

@end

// GNUstep's activities cannot be counted.
@implementation NSProcessInfo (BrimletShims)

- (id)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    if (options == NSActivityUserInitiatedAllowingIdleSystemSleep && [reason length] > 0) {
        ++activities;
    }
    return [[[NSObject alloc] init] autorelease];
}

- (void)endActivity:(id)activity {
    --activities;
}

@end

@implementation NSWorkspace (BrimletShims)

// GNUstep's own center posts by way of that daemon.
- (NSNotificationCenter*)notificationCenter {
    static NSNotificationCenter* const center = [[NSNotificationCenter alloc] init];
    return center;
}

- (BOOL)accessibilityDisplayShouldReduceMotion {
    return reducesMotion ? YES : NO;
}

- (NSRunningApplication*)menuBarOwningApplication {
    static BrimletMenuBarOwner* const owner = [[BrimletMenuBarOwner alloc] init];
    return (NSRunningApplication*)owner;
}

- (void)openURL:(NSURL*)url
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:(void (^)(NSRunningApplication* app, NSError* error))completionHandler {
    brimlet::shims::openedAddresses().push_back(brimlet::fromNative([url absoluteString]));
}

@end

// The screens of GNUstep have no notch, and are those of its X server.
@implementation NSScreen (BrimletShims)

- (NSRect)auxiliaryTopLeftArea {
    return NSZeroRect;
}

- (NSRect)auxiliaryTopRightArea {
    return NSZeroRect;
}

@end

// GNUstep has the class, without a method.
@implementation NSAppleEventManager (BrimletShims)

+ (NSAppleEventManager*)sharedAppleEventManager {
    static NSAppleEventManager* const manager = [[NSAppleEventManager alloc] init];
    return manager;
}

- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID {
    appleEventHandlers[{eventClass, eventID}] = {handler, handleEventSelector};
}

@end

// GNUstep has the class, but views do not take it; they have the tracking rectangles of old. Here
// an area has to be in the visible rect, and lives as long as the program.
@interface BrimletTrackedArea : NSObject {
@public
    NSView* view;
    NSTrackingArea* area;
    NSTrackingRectTag tag;
}
@end

@implementation BrimletTrackedArea

- (void)track:(NSNotification*)notification {
    if (tag != 0) {
        [view removeTrackingRect:tag];
    }
    tag = [view addTrackingRect:[view bounds] owner:[area owner] userData:area assumeInside:NO];
    [[view window] setAcceptsMouseMovedEvents:([area options] & NSTrackingMouseMoved) != 0];
}

@end

@implementation NSView (BrimletShims)

// Apple's calls these two; GNUstep's sets the frame itself.
- (void)setFrame:(NSRect)frame {
    [self setFrameOrigin:frame.origin];
    [self setFrameSize:frame.size];
}

// GNUstep shows no tooltips of a program that is not active.
- (NSToolTipTag)addToolTipRect:(NSRect)rect owner:(id)owner userData:(void*)data {
    toolTips()[self].emplace_back(rect, owner);
    return 1;
}

- (void)removeAllToolTips {
    toolTips().erase(self);
}

- (void)addTrackingArea:(NSTrackingArea*)area {
    if (([area options] & NSTrackingInVisibleRect) == 0 ||
        ([area options] & NSTrackingMouseEnteredAndExited) == 0 ||
        ([area options] & NSTrackingActiveAlways) == 0) {
        return; // of no use for a program that is not active
    }
    auto* const tracked = [[BrimletTrackedArea alloc] init];
    tracked->view = self;
    tracked->area = [area retain];
    [self setPostsFrameChangedNotifications:YES];
    [NSNotificationCenter.defaultCenter addObserver:tracked
                                           selector:@selector(track:)
                                               name:NSViewFrameDidChangeNotification
                                             object:self];
}

@end

static NSWindowAnimationBehavior gAnimationBehavior = NSWindowAnimationBehaviorNone;

@implementation NSWindow (BrimletShims)

static std::map<NSWindow*, NSWindowCollectionBehavior>& behaviors() {
    static std::map<NSWindow*, NSWindowCollectionBehavior> all;
    return all;
}

// GNUstep forgets it.
- (void)setCollectionBehavior:(NSWindowCollectionBehavior)behavior {
    behaviors()[self] = behavior;
}

- (NSWindowCollectionBehavior)collectionBehavior {
    return behaviors()[self];
}

// GNUstep's finds none of these panels. This one looks at frames, not at the order.
+ (NSInteger)windowNumberAtPoint:(NSPoint)point
     belowWindowWithWindowNumber:(NSInteger)windowNumber {
    for (NSWindow* window in [NSApp windows]) {
        if (windowNumber == 0 && [window isVisible] && ![window ignoresMouseEvents] &&
            NSPointInRect(point, [window frame])) {
            return [window windowNumber];
        }
    }
    return 0;
}

- (NSPoint)convertPointToScreen:(NSPoint)point {
    return [self convertBaseToScreen:point];
}

- (NSWindowAnimationBehavior)animationBehavior {
    return gAnimationBehavior;
}
- (void)setAnimationBehavior:(NSWindowAnimationBehavior)behavior {
    gAnimationBehavior = behavior;
}
@end

// GNUstep's status items have neither a button nor a place.
@interface BrimletStatusWindow : NSPanel
@end

@implementation BrimletStatusWindow

- (BOOL)canBecomeKeyWindow {
    return NO;
}

@end

@implementation NSStatusItem (BrimletShims)

- (NSStatusBarButton*)button {
    NSStatusBarButton*& button = buttonsOfItems()[self];
    if (button == nil) {
        const NSRect frame = NSMakeRect(1200, 958, 28, 24);
        button = [[NSStatusBarButton alloc] initWithFrame:NSMakeRect(0, 0, 28, 24)];
        NSWindow* const window =
            [[BrimletStatusWindow alloc] initWithContentRect:frame
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
        [window setContentView:button];
        [window setReleasedWhenClosed:NO];
        [window orderFrontRegardless];
    }
    return button;
}

@end

// There is no status bar either.
@implementation NSStatusBar (BrimletShims)

+ (NSStatusBar*)systemStatusBar {
    static NSStatusBar* const bar = [[NSStatusBar alloc] init];
    return bar;
}

- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    return [[NSStatusItem alloc] init];
}

- (void)removeStatusItem:(NSStatusItem*)item {
    [[[item button] window] orderOut:nil];
    buttonsOfItems().erase(item);
}

@end

// The system's symbols.
@implementation NSImage (BrimletShims)

+ (instancetype)imageWithSystemSymbolName:(NSString*)name
                 accessibilityDescription:(NSString*)description {
    NSImage* const image = [[[self alloc] initWithSize:NSMakeSize(18, 18)] autorelease];
    [image setName:name];
    return image;
}

- (void)setTemplate:(BOOL)isTemplate {
    if (isTemplate) {
        [self setName:[[self name] stringByAppendingString:@" template"]];
    }
}

@end

namespace brimlet::shims {

std::vector<QString>& openedAddresses() {
    static std::vector<QString> addresses;
    return addresses;
}

void setReducesMotion(bool reduces) {
    reducesMotion = reduces;
}

void setBuiltInDisplay(std::uint32_t number) {
    builtInDisplay = number;
}

void setScreens(NSArray* replacement) {
    const Method method = class_getClassMethod([NSScreen class], @selector(screens));
    static const IMP original = method_getImplementation(method);
    [screens release];
    screens = [replacement retain];
    method_setImplementation(method, screens == nil ? original : &screensOfTest);
}

std::vector<QString>& frontRequests() {
    static std::vector<QString> requests;
    return requests;
}

int activitiesUnderWay() {
    return activities;
}

NSButton* statusButton() {
    return buttonsOfItems().empty() ? nil : buttonsOfItems().begin()->second;
}

QString toolTip(NSView* view) {
    const auto& all = toolTips()[view];
    if (all.size() != 1 || !NSEqualRects(all[0].first, [view bounds])) {
        return QStringLiteral("%1 tooltips, or one of another size").arg(all.size());
    }
    return fromNative([all[0].second view:view
                         stringForToolTip:1
                                    point:NSMakePoint(1, 1)
                                 userData:nullptr]);
}

bool sendAppleEvent(AEEventClass eventClass, AEEventID eventID) {
    const auto handler = appleEventHandlers.find({eventClass, eventID});
    if (handler == appleEventHandlers.end()) {
        return false;
    }
    const auto& [object, selector] = handler->second;
    [object performSelector:selector withObject:nil withObject:nil];
    return true;
}

void forgetAppleEventHandlers() {
    appleEventHandlers.clear();
}

void handleEvents() {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    while (NSEvent* const event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                                     untilDate:[NSDate distantPast]
                                                        inMode:NSDefaultRunLoopMode
                                                       dequeue:YES]) {
        [NSApp sendEvent:event];
    }
    [pool release];
}

} // namespace brimlet::shims
