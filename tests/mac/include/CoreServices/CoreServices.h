// Not Apple's header: the declarations of CoreServices that Brimlet uses, written from the public
// documentation. See tests/mac/README.md.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

using AEEventClass = FourCharCode;
using AEEventID = FourCharCode;

enum : UInt32 {
    kCoreEventClass = 0x61657674,      // 'aevt'
    kAEReopenApplication = 0x72617070, // 'rapp'
};
