// In place of Apple's header, which GNUstep has not. Defined in tests/mac/gnustep/shims.mm.
#pragma once

#include <Foundation/Foundation.h>

#include <cstdint>

/// 1 for the number that a test has set.
extern "C" unsigned int CGDisplayIsBuiltin(std::uint32_t display);
