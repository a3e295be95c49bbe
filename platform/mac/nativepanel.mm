#import "platform/mac/nativepanel.h"

#include <QWidget>

@implementation BrimletPanel

- (instancetype)initTakingKeyboard:(BOOL)takesKeyboard {
    self = [super initWithContentRect:NSZeroRect
                            styleMask:NSWindowStyleMaskNonactivatingPanel
                              backing:NSBackingStoreBuffered
                                defer:YES];
    if (self != nil) {
        _takesKeyboard = takesKeyboard;
        self.releasedWhenClosed = NO;
        self.floatingPanel = YES; // also sets the level, so it comes first
        self.level = NSStatusWindowLevel;
        self.backgroundColor = NSColor.clearColor;
        self.opaque = NO;
        self.hidesOnDeactivate = NO;
    }
    return self;
}

- (BOOL)canBecomeKeyWindow {
    return _takesKeyboard;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

@end

namespace brimlet {

NSView* viewOf(QWidget& widget) {
    return (__bridge NSView*)reinterpret_cast<void*>(widget.winId());
}

void putInto(NSView* parent, QWidget& widget) {
    NSView* const view = viewOf(widget);
    view.window.contentView = nil;
    view.autoresizingMask = NSViewNotSizable; // Qt alone resizes it
    [parent addSubview:view];
}

} // namespace brimlet
