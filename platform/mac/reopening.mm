#import "platform/mac/reopening.h"

#import "platform/mac/onnotification.h"

#import <AppKit/AppKit.h>
#import <CoreServices/CoreServices.h>

#include <utility>

static std::function<void()> reopened;

/// Hears the Apple event itself: from Qt's application delegate it comes as one activation more.
@interface BrimletReopenHandler : NSObject
@end

@implementation BrimletReopenHandler

- (void)reopen:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply {
    reopened();
}

@end

namespace brimlet {

void onReopened(std::function<void()> block) {
    reopened = std::move(block);
    static BrimletReopenHandler* const handler = [[BrimletReopenHandler alloc] init];
    const auto install = [] {
        NSAppleEventManager* const manager = NSAppleEventManager.sharedAppleEventManager;
        [manager setEventHandler:handler
                     andSelector:@selector(reopen:withReplyEvent:)
                   forEventClass:kCoreEventClass
                      andEventID:kAEReopenApplication];
    };
    install();
    // AppKit puts its own handlers in while the application launches.
    static const auto whenLaunched =
        onNotification(NSNotificationCenter.defaultCenter,
                       NSApplicationDidFinishLaunchingNotification, nil, install);
}

} // namespace brimlet
