#import "platform/mac/reopening.h"

#import "platform/mac/onnotification.h"

#import <AppKit/AppKit.h>
#import <CoreServices/CoreServices.h>

#include <utility>

static std::function<void()> reopened;

/// Handles the Apple event in place of Qt's application delegate, which would turn it into an
/// ordinary activation.
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
    // AppKit installs its own handlers while the application launches, so install it again after.
    static const auto whenLaunched =
        onNotification(NSNotificationCenter.defaultCenter,
                       NSApplicationDidFinishLaunchingNotification, nil, install);
}

} // namespace brimlet
