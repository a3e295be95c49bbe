// In place of Apple's header, which GNUstep has not: the numbers of the Apple event in use.
#pragma once

#include <cstdint>

using AEEventClass = std::uint32_t;
using AEEventID = std::uint32_t;

enum : std::uint32_t {
    kCoreEventClass = 0x61657674,
    kAEReopenApplication = 0x72617070,
};
