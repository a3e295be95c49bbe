#pragma once

#include "platform/mac/rules/capsulemouse.h"

#import <AppKit/AppKit.h>

/// The content of the invisible panel over a capsule: reports the mouse to a CapsuleMouse and shows
/// the tooltip, also while the program is not active.
@interface BrimletCapsuleView : NSView <NSViewToolTipOwner> {
    brimlet::CapsuleMouse* _mouse;
}

/// The mouse must live until `forgetMouse`.
- (instancetype)initWithMouse:(brimlet::CapsuleMouse*)mouse;

/// Stops all reports. AppKit may keep the view for a while.
- (void)forgetMouse;

@end
