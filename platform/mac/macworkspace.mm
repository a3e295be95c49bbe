#import "platform/mac/macworkspace.h"

#import "platform/mac/nativetext.h"
#import "platform/mac/onnotification.h"

#import <AppKit/AppKit.h>

namespace brimlet {
namespace {

/// Holds off App Nap, which delays the timers of programs that draw little, until the result is
/// destroyed. The machine may still go to sleep.
QScopeGuard<std::function<void()>> activity() {
    id activity = [NSProcessInfo.processInfo
        beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                          reason:@"Time is counted by regular heartbeats"];
    return QScopeGuard<std::function<void()>>(
        [activity] { [NSProcessInfo.processInfo endActivity:activity]; });
}

} // namespace

MacWorkspace::MacWorkspace()
    : m_sleep(onNotification(NSWorkspace.sharedWorkspace.notificationCenter,
                             NSWorkspaceScreensDidSleepNotification, nil,
                             [this] { m_sleepObservers.notify(); }))
    , m_wake(onNotification(NSWorkspace.sharedWorkspace.notificationCenter,
                            NSWorkspaceScreensDidWakeNotification, nil,
                            [this] { m_wakeObservers.notify(); }))
    , m_activity(activity()) {}

void MacWorkspace::open(const Url& url) {
    NSURL* const native = [NSURL URLWithString:toNative(url.absoluteString())];
    if (native != nil) {
        [NSWorkspace.sharedWorkspace openURL:native
                               configuration:[NSWorkspaceOpenConfiguration configuration]
                           completionHandler:nil];
    }
}

} // namespace brimlet
