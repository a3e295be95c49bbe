// GNUstep's Foundation, and the events of another program that it lacks. Defined in
// tests/mac/gnustep/shims.mm.
#pragma once

#include_next <Foundation/Foundation.h>

#include <CoreServices/CoreServices.h>

@interface NSAppleEventManager (BrimletShims)
@property(class, readonly) NSAppleEventManager* sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
@end
