#import "platform/mac/macscreens.h"

#include "platform/mac/rules/screenfacts.h"

#import "platform/mac/nativepanel.h"
#import "platform/mac/onnotification.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#include <optional>

namespace brimlet {
namespace {

std::optional<double> describedNumber(NSScreen* screen) {
    id number = [screen.deviceDescription objectForKey:@"NSScreenNumber"];
    if (![number isKindOfClass:[NSNumber class]]) {
        return std::nullopt;
    }
    return [static_cast<NSNumber*>(number) doubleValue];
}

} // namespace

MacScreens::MacScreens()
    : m_registration(onNotification(NSNotificationCenter.defaultCenter,
                                    NSApplicationDidChangeScreenParametersNotification, nil,
                                    [this] { m_observers.notify(); })) {}

std::vector<Screen> MacScreens::list() const {
    std::vector<Screen> screens;
    for (NSScreen* screen in NSScreen.screens) {
        screens.push_back(
            {.number = displayNumber(describedNumber(screen)),
             .frame = rectFrom(screen.frame),
             .auxiliaryTopLeftArea = stripBesideNotch(rectFrom(screen.auxiliaryTopLeftArea)),
             .auxiliaryTopRightArea = stripBesideNotch(rectFrom(screen.auxiliaryTopRightArea))});
    }
    return screens;
}

bool MacScreens::isBuiltIn(std::uint32_t displayNumber) const {
    return CGDisplayIsBuiltin(displayNumber) != 0;
}

} // namespace brimlet
