#import "platform/mac/capsuleview.h"

#import "platform/mac/nativetext.h"

@implementation BrimletCapsuleView

- (instancetype)initWithMouse:(brimlet::CapsuleMouse*)mouse {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _mouse = mouse;
        const NSTrackingAreaOptions options = NSTrackingMouseEnteredAndExited |
                                              NSTrackingMouseMoved | NSTrackingActiveAlways |
                                              NSTrackingInVisibleRect;
        [self addTrackingArea:[[NSTrackingArea alloc] initWithRect:NSZeroRect
                                                           options:options
                                                             owner:self
                                                          userInfo:nil]];
    }
    return self;
}

- (void)forgetMouse {
    _mouse = nullptr;
}

- (void)setFrameSize:(NSSize)size {
    [super setFrameSize:size];
    [self removeAllToolTips];
    [self addToolTipRect:self.bounds owner:self userData:nullptr];
}

/// Otherwise the first click on an inactive program's window is not reported.
- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    return YES;
}

- (void)updatePointer {
    if (_mouse != nullptr) {
        const NSPoint point = NSEvent.mouseLocation;
        _mouse->pointerAt(QPointF(point.x, point.y));
    }
}

- (void)mouseEntered:(NSEvent*)event {
    [self updatePointer];
}

- (void)mouseMoved:(NSEvent*)event {
    [self updatePointer];
}

- (void)mouseExited:(NSEvent*)event {
    [self updatePointer];
}

- (QPointF)positionOf:(NSEvent*)event {
    const NSPoint point = [self.window convertPointToScreen:event.locationInWindow];
    return {point.x, point.y};
}

- (void)mouseDown:(NSEvent*)event {
    if (_mouse != nullptr) {
        _mouse->press([self positionOf:event]);
    }
}

- (void)mouseUp:(NSEvent*)event {
    if (_mouse != nullptr) {
        _mouse->release([self positionOf:event]);
    }
}

- (NSString*)view:(NSView*)view
    stringForToolTip:(NSToolTipTag)tag
               point:(NSPoint)point
            userData:(void*)data {
    return brimlet::toNative(_mouse == nullptr ? QString() : _mouse->toolTip());
}

@end
