#pragma once

#include "platform/mac/rules/hovertracker.h"

#import <AppKit/AppKit.h>

#include <QPoint>
#include <QRect>
#include <QString>

#include <functional>
#include <vector>

/// A view that reports to a tracker when the pointer enters and leaves its boxes, and shows their
/// tooltips, also while the program is not active.
@interface BrimletHoverView : NSView <NSViewToolTipOwner>

/// Positions are in the view's coordinates, in points, y down. The tracker must live until
/// `forgetTracker`. `toolTipAt` returns the tooltip at a position, empty for none.
- (instancetype)initWithTracker:(brimlet::HoverTracker*)tracker
                       toolTips:(std::function<QString(QPoint)>)toolTipAt;

/// Replaces the boxes.
- (void)followBoxes:(const std::vector<QRect>&)boxes;

/// Stops all reports to the tracker, which may then be destroyed.
- (void)forgetTracker;

/// Reports the pointer's current position to the tracker. Needed because AppKit sends no event when
/// a box appears under a resting pointer or the window of an entered box is hidden.
- (void)updatePointerPosition;

@end
