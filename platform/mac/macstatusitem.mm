#import "platform/mac/macstatusitem.h"

#import "platform/mac/nativepanel.h"
#import "platform/mac/nativetext.h"

/// The target of the item's button.
@interface BrimletStatusTarget : NSObject {
    brimlet::Observers* _presses;
}
- (instancetype)initWithObservers:(brimlet::Observers*)presses;
@end

@implementation BrimletStatusTarget

- (instancetype)initWithObservers:(brimlet::Observers*)presses {
    self = [super init];
    if (self != nil) {
        _presses = presses;
    }
    return self;
}

- (void)press:(id)sender {
    _presses->notify();
}

@end

namespace brimlet {

struct MacStatusItem::Native final {
    NSStatusItem* item =
        [NSStatusBar.systemStatusBar statusItemWithLength:NSSquareStatusItemLength];
    BrimletStatusTarget* target = nil;
};

MacStatusItem::MacStatusItem()
    : m_native(std::make_unique<Native>()) {
    m_native->target = [[BrimletStatusTarget alloc] initWithObservers:&m_presses];
    NSStatusBarButton* const button = m_native->item.button;
    button.image = [NSImage imageWithSystemSymbolName:@"laptopcomputer"
                             accessibilityDescription:@"Brimlet"];
    [button.image setTemplate:YES];
    button.target = m_native->target;
    button.action = @selector(press:);
    [button sendActionOn:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown];
}

MacStatusItem::~MacStatusItem() {
    m_native->item.button.target = nil; // the system may keep the button for a while
    [NSStatusBar.systemStatusBar removeStatusItem:m_native->item];
}

std::optional<Rect> MacStatusItem::place() const {
    const NSRect frame = m_native->item.button.window.frame;
    return frame.size.width > 0 ? std::optional(rectFrom(frame)) : std::nullopt;
}

void MacStatusItem::setToolTip(const QString& text) {
    m_native->item.button.toolTip = toNative(text);
}

} // namespace brimlet
