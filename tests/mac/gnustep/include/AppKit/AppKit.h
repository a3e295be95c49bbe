// GNUstep's AppKit, and what of Apple's it lacks, as far as platform/mac uses it. Defined in
// tests/mac/gnustep/shims.mm, unless GNUstep has the methods and only declares no property.
#pragma once

#include_next <AppKit/AppKit.h>

#include <CoreGraphics/CoreGraphics.h>

// Properties of methods that GNUstep has.
@interface NSApplication (BrimletProperties)
@property(getter=isActive, readonly) BOOL active;
@end
@interface NSWindow (BrimletProperties)
@property(getter=isVisible, readonly) BOOL visible;
@property(getter=isKeyWindow, readonly) BOOL keyWindow;
@property(getter=isOpaque) BOOL opaque;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@end
@interface NSPanel (BrimletProperties)
@property(getter=isFloatingPanel) BOOL floatingPanel;
@end

extern NSString* const NSWorkspaceScreensDidSleepNotification;
extern NSString* const NSWorkspaceScreensDidWakeNotification;
extern NSString* const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end

@interface NSWorkspace (BrimletShims)
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@property(readonly, strong) NSRunningApplication* menuBarOwningApplication;
- (void)openURL:(NSURL*)url
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:(void (^)(NSRunningApplication* app, NSError* error))completionHandler;
@end

@interface NSScreen (BrimletShims)
@property(readonly) NSRect auxiliaryTopLeftArea;
@property(readonly) NSRect auxiliaryTopRightArea;
@end

// GNUstep asks an owner for these methods without naming them in a protocol.
@protocol NSViewToolTipOwner <NSObject>
- (NSString*)view:(NSView*)view
    stringForToolTip:(NSToolTipTag)tag
               point:(NSPoint)point
            userData:(void*)data;
@end

@interface NSView (BrimletShims)
- (void)addTrackingArea:(NSTrackingArea*)area;
@end

typedef NS_ENUM(NSInteger, NSWindowAnimationBehavior) {
    NSWindowAnimationBehaviorNone = 2,
    NSWindowAnimationBehaviorUtilityWindow = 4,
};

@interface NSWindow (BrimletShims)
- (NSPoint)convertPointToScreen:(NSPoint)point;
@property NSWindowAnimationBehavior animationBehavior; // one for all windows
@end

@interface NSApplication (BrimletShims)
- (void)yieldActivationToApplication:(NSRunningApplication*)application;
@end

@interface NSRunningApplication (BrimletShims)
- (BOOL)activateFromApplication:(NSRunningApplication*)application options:(NSUInteger)options;
@end

enum {
    NSEventMaskLeftMouseDown = NSLeftMouseDownMask,
    NSEventMaskRightMouseDown = NSRightMouseDownMask,
};

@interface NSImage (BrimletShims)
+ (instancetype)imageWithSystemSymbolName:(NSString*)name
                 accessibilityDescription:(NSString*)description;
- (void)setTemplate:(BOOL)isTemplate;
@end

@interface NSStatusItem (BrimletShims)
@property(readonly, strong) NSStatusBarButton* button;
@end
