#import "platform/mac/macreducemotion.h"

#import "platform/mac/onnotification.h"

#import <AppKit/AppKit.h>

namespace brimlet {

MacReduceMotion::MacReduceMotion()
    : m_registration(onNotification(NSWorkspace.sharedWorkspace.notificationCenter,
                                    NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification,
                                    nil, [this] { m_observers.notify(); })) {}

bool MacReduceMotion::isOn() const {
    return NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
}

} // namespace brimlet
