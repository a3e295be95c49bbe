#import "platform/mac/macworkspace.h"

#import "platform/mac/nativetext.h"
#import "platform/mac/onnotification.h"

#import <AppKit/AppKit.h>

namespace brimlet {

MacWorkspace::MacWorkspace()
    : m_sleep(onNotification(NSWorkspace.sharedWorkspace.notificationCenter,
                             NSWorkspaceScreensDidSleepNotification, nil,
                             [this] { m_sleepObservers.notify(); }))
    , m_wake(onNotification(NSWorkspace.sharedWorkspace.notificationCenter,
                            NSWorkspaceScreensDidWakeNotification, nil,
                            [this] { m_wakeObservers.notify(); })) {}

void MacWorkspace::open(const Url& url) {
    NSURL* const native = [NSURL URLWithString:toNative(url.absoluteString())];
    if (native != nil) {
        [NSWorkspace.sharedWorkspace openURL:native
                               configuration:[NSWorkspaceOpenConfiguration configuration]
                           completionHandler:nil];
    }
}

} // namespace brimlet
