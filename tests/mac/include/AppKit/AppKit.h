// Not Apple's header: the declarations of AppKit that Brimlet uses, written from the public
// documentation. See tests/mac/README.md.
#pragma once

#include <Foundation/Foundation.h>

@class NSError, NSEvent, NSTrackingArea, NSView, NSWindow;

extern "C" {
extern const NSNotificationName NSApplicationDidChangeScreenParametersNotification;
extern const NSNotificationName NSApplicationDidFinishLaunchingNotification;
extern const NSNotificationName NSWindowDidResignKeyNotification;
extern const NSNotificationName NSWorkspaceScreensDidSleepNotification; // macOS 10.6
extern const NSNotificationName NSWorkspaceScreensDidWakeNotification;  // macOS 10.6
extern const NSNotificationName
    NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification; // macOS 10.10
}

typedef NSString* NSDeviceDescriptionKey;

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(readonly) NSRect frame;
@property(readonly, copy) NSDictionary<NSDeviceDescriptionKey, id>* deviceDescription;
@property(readonly) NSRect auxiliaryTopLeftArea;  // macOS 12.0
@property(readonly) NSRect auxiliaryTopRightArea; // macOS 12.0
@end

typedef NSUInteger NSApplicationActivationOptions; // none of its constants is used

@interface NSRunningApplication : NSObject
@property(class, readonly, strong) NSRunningApplication* currentApplication; // macOS 10.6
- (BOOL)activateFromApplication:(NSRunningApplication*)application
                        options:(NSApplicationActivationOptions)options; // macOS 14.0
@end

@interface NSWorkspaceOpenConfiguration : NSObject // macOS 10.15
+ (instancetype)configuration;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;            // macOS 10.12
@property(readonly, strong) NSRunningApplication* menuBarOwningApplication; // macOS 10.7
- (void)openURL:(NSURL*)url
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:
        (void (^)(NSRunningApplication* app, NSError* error))completionHandler; // macOS 10.15
@end

@interface NSColor : NSObject
@property(class, strong, readonly) NSColor* clearColor;
@end

@interface NSCursor : NSObject
@property(class, readonly, strong) NSCursor* arrowCursor;
@property(class, readonly, strong) NSCursor* pointingHandCursor;
- (void)set;
@end

typedef NS_OPTIONS(unsigned long long, NSEventMask) {
    NSEventMaskLeftMouseDown = 1 << 1,
    NSEventMaskRightMouseDown = 1 << 3,
};

@interface NSEvent : NSObject
@property(class, readonly) NSPoint mouseLocation;
@property(readonly) NSPoint locationInWindow;
@end

@interface NSResponder : NSObject
- (void)mouseDown:(NSEvent*)event;
- (void)mouseUp:(NSEvent*)event;
- (void)mouseMoved:(NSEvent*)event;
- (void)mouseEntered:(NSEvent*)event;
- (void)mouseExited:(NSEvent*)event;
@end

@interface NSApplication : NSResponder
@property(getter=isActive, readonly) BOOL active;
- (void)yieldActivationToApplication:(NSRunningApplication*)application; // macOS 14.0
@end

extern "C" NSApplication* NSApp;

typedef NS_OPTIONS(NSUInteger, NSTrackingAreaOptions) {
    NSTrackingMouseEnteredAndExited = 0x01,
    NSTrackingMouseMoved = 0x02,
    NSTrackingActiveAlways = 0x80,
    NSTrackingInVisibleRect = 0x200,
};

@interface NSTrackingArea : NSObject
- (instancetype)initWithRect:(NSRect)rect
                     options:(NSTrackingAreaOptions)options
                       owner:(id)owner
                    userInfo:(NSDictionary<id, id>*)userInfo;
@end

typedef NSInteger NSToolTipTag;

@protocol NSViewToolTipOwner <NSObject>
- (NSString*)view:(NSView*)view
    stringForToolTip:(NSToolTipTag)tag
               point:(NSPoint)point
            userData:(void*)data;
@end

typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) {
    NSViewNotSizable = 0,
};

@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frameRect;
@property NSRect bounds;
@property(readonly, assign) NSWindow* window;
@property NSAutoresizingMaskOptions autoresizingMask;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
- (void)setFrameSize:(NSSize)newSize;
- (BOOL)acceptsFirstMouse:(NSEvent*)event;
- (void)addTrackingArea:(NSTrackingArea*)trackingArea;
- (NSToolTipTag)addToolTipRect:(NSRect)rect owner:(id)owner userData:(void*)data;
- (void)removeAllToolTips;
@property(copy) NSString* toolTip;
@end

typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
};

typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorMoveToActiveSpace = 1 << 1,
    NSWindowCollectionBehaviorStationary = 1 << 4,
    NSWindowCollectionBehaviorIgnoresCycle = 1 << 6,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};

typedef NS_ENUM(NSInteger, NSWindowAnimationBehavior) {
    NSWindowAnimationBehaviorNone = 2,
    NSWindowAnimationBehaviorUtilityWindow = 4,
};

typedef NS_ENUM(NSUInteger, NSBackingStoreType) {
    NSBackingStoreBuffered = 2,
};

typedef NSInteger NSWindowLevel;
extern "C" const NSWindowLevel NSStatusWindowLevel; // 25

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag;
@property NSWindowStyleMask styleMask;
+ (NSInteger)windowNumberAtPoint:(NSPoint)point
     belowWindowWithWindowNumber:(NSInteger)windowNumber; // macOS 10.6
@property(readonly) NSInteger windowNumber;
@property(readonly) NSRect frame;
- (NSPoint)convertPointToScreen:(NSPoint)point; // macOS 10.12
@property NSWindowLevel level;
@property(getter=isVisible, readonly) BOOL visible;
@property(getter=isKeyWindow, readonly) BOOL keyWindow;
@property(readonly, weak) NSResponder* firstResponder;
@property NSWindowCollectionBehavior collectionBehavior;
@property NSWindowAnimationBehavior animationBehavior;
@property(strong) NSColor* backgroundColor;
@property(getter=isOpaque) BOOL opaque;
@property BOOL hasShadow;
@property BOOL hidesOnDeactivate;
@property BOOL canHide;
@property BOOL ignoresMouseEvents;
@property BOOL allowsToolTipsWhenApplicationIsInactive;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property(strong) __kindof NSView* contentView; // may be nil
@property(readonly) BOOL canBecomeKeyWindow;
@property(readonly) BOOL canBecomeMainWindow;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
- (void)invalidateShadow;
- (BOOL)makeFirstResponder:(NSResponder*)responder;
- (void)makeKeyWindow;
- (void)orderFrontRegardless;
- (void)orderOut:(id)sender;
@end

@interface NSPanel : NSWindow
@property(getter=isFloatingPanel) BOOL floatingPanel;
@end

@interface NSImage : NSObject
+ (instancetype)imageWithSystemSymbolName:(NSString*)name
                 accessibilityDescription:(NSString*)description; // macOS 11.0
- (void)setTemplate:(BOOL)isTemplate; // of a property whose name is a keyword of C++
@end

@interface NSControl : NSView
@property(weak) id target;
@property SEL action;
- (NSInteger)sendActionOn:(NSEventMask)mask;
@end

@interface NSButton : NSControl
@property(strong) NSImage* image;
@end

@interface NSStatusBarButton : NSButton // macOS 10.10
@end

extern "C" const CGFloat NSSquareStatusItemLength; // -2

@interface NSStatusItem : NSObject
@property(readonly, strong) NSStatusBarButton* button; // macOS 10.10
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end
