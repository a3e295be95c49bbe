#pragma once

#include "platform/rect.h"

#import <AppKit/AppKit.h>

class QWidget;

/// A panel without a frame that never activates the program. The non-activating style is set in the
/// initializer: set later, it is reported to have no effect. Qt sets the style of its windows
/// later, so the panels are made here.
@interface BrimletPanel : NSPanel {
    BOOL _takesKeyboard;
}

/// Makes a transparent panel at the level of status windows that is not released when closed.
/// `takesKeyboard` says whether it can become the key window.
- (instancetype)initTakingKeyboard:(BOOL)takesKeyboard;

- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag __attribute__((unavailable));

@end

namespace brimlet {

// Global points are the same in both, so these copy the numbers.
[[nodiscard]] inline NSRect nativeRect(const Rect& rect) {
    return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}
[[nodiscard]] inline Rect rectFrom(NSRect rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

/// The native view of a widget that has no parent. The widget owns it.
[[nodiscard]] NSView* viewOf(QWidget& widget);

/// Moves a widget's view into `parent`, out of the window that Qt made for it; that window is never
/// shown.
void putInto(NSView* parent, QWidget& widget);

} // namespace brimlet
