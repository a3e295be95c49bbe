#import "platform/mac/hoverview.h"

#import "platform/mac/nativetext.h"

#include <optional>
#include <utility>

@implementation BrimletHoverView {
    brimlet::HoverTracker* _tracker;
    std::function<QString(QPoint)> _toolTipAt;
    NSMutableArray<NSTrackingArea*>* _areas; // one for each box, in the same order
}

- (instancetype)initWithTracker:(brimlet::HoverTracker*)tracker
                       toolTips:(std::function<QString(QPoint)>)toolTipAt {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _tracker = tracker;
        _toolTipAt = std::move(toolTipAt);
        _areas = [[NSMutableArray alloc] init];
    }
    return self;
}

// Qt's coordinates, so that boxes need no conversion.
- (BOOL)isFlipped {
    return YES;
}

- (void)followBoxes:(const std::vector<QRect>&)boxes {
    if (!_tracker->setBoxes(boxes)) {
        return;
    }
    for (NSTrackingArea* area in _areas) {
        [self removeTrackingArea:area];
    }
    [_areas removeAllObjects];
    [self removeAllToolTips];
    for (const QRect& box : boxes) {
        const NSRect rect = NSMakeRect(box.x(), box.y(), box.width(), box.height());
        NSTrackingArea* const area = [[NSTrackingArea alloc]
            initWithRect:rect
                 options:NSTrackingMouseEnteredAndExited | NSTrackingActiveAlways
                   owner:self
                userInfo:nil];
        [self addTrackingArea:area];
        [_areas addObject:area];
        [self addToolTipRect:rect owner:self userData:nullptr];
    }
    [self updatePointerPosition];
}

- (void)forgetTracker {
    _tracker = nullptr;
}

- (void)updatePointerPosition {
    if (_tracker == nullptr) {
        return;
    }
    std::optional<QPointF> where;
    if (self.window.visible && !self.window.ignoresMouseEvents) {
        const NSPoint point = [self convertPoint:self.window.mouseLocationOutsideOfEventStream
                                        fromView:nil];
        where = QPointF(point.x, point.y);
    }
    _tracker->pointerAt(where);
}

- (void)mouseEntered:(NSEvent*)event {
    if (_tracker != nullptr) {
        _tracker->enter([_areas indexOfObjectIdenticalTo:event.trackingArea]);
    }
}

- (void)mouseExited:(NSEvent*)event {
    if (_tracker != nullptr) {
        _tracker->leave([_areas indexOfObjectIdenticalTo:event.trackingArea]);
    }
}

- (NSString*)view:(NSView*)view
    stringForToolTip:(NSToolTipTag)tag
               point:(NSPoint)point
            userData:(void*)data {
    return brimlet::toNative(
        _toolTipAt(QPoint(static_cast<int>(point.x), static_cast<int>(point.y))));
}

@end
