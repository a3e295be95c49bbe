#pragma once

#include "platform/mac/rules/hovertracker.h"

#import <AppKit/AppKit.h>

#include <QPoint>
#include <QRect>
#include <QString>

#include <functional>
#include <vector>

/// A view that tells a tracker when the pointer comes into its boxes and leaves them, and shows
/// their tooltips, whether the program is active or not.
@interface BrimletHoverView : NSView <NSViewToolTipOwner>

/// Places are in the view's coordinates, y down. The tracker stays until it is forgotten.
- (instancetype)initWithTracker:(brimlet::HoverTracker*)tracker
                       toolTips:(std::function<QString(QPoint)>)toolTipAt;

/// Takes the place of the boxes before.
- (void)followBoxes:(const std::vector<QRect>&)boxes;

/// The tracker goes: nothing is told any more.
- (void)forgetTracker;

/// Tells the tracker where the pointer is. A box that comes under a resting pointer is not entered
/// by it, nor is one left when its window goes.
- (void)lookForPointer;

@end
