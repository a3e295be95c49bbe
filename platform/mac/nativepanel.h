#pragma once

#include "platform/rect.h"

#import <AppKit/AppKit.h>

class QWidget;

/// A panel without a frame that never activates the program. Its style is given once and for all by
/// the initializer, since a panel that is told later to be non-activating is reported to activate
/// the program all the same; that is why it is not one of Qt's windows with another style.
@interface BrimletPanel : NSPanel

/// It stands at the level of status windows, transparent, and outlives its being closed.
- (instancetype)initTakingKeyboard:(BOOL)takesKeyboard;

- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag __attribute__((unavailable));

@end

namespace brimlet {

[[nodiscard]] NSRect nativeRect(const Rect& rect);

/// The native view of a widget that has no parent. It belongs to the widget.
[[nodiscard]] NSView* viewOf(QWidget& widget);

/// Moves a widget's view out of the window that Qt made for it, which is never shown.
void putInto(NSView* parent, QWidget& widget);

} // namespace brimlet
