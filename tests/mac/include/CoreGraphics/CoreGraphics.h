// Not Apple's header: the declarations of CoreGraphics that Brimlet uses, written from the public
// documentation. See tests/mac/README.md.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

using CGFloat = double;

struct CGPoint {
    CGFloat x;
    CGFloat y;
};
struct CGSize {
    CGFloat width;
    CGFloat height;
};
struct CGRect {
    CGPoint origin;
    CGSize size;
};

using CGDirectDisplayID = std::uint32_t;
#ifdef BRIMLET_BOOL_IS_BOOL // as on Apple silicon
using boolean_t = int;
#else // as on Intel
using boolean_t = unsigned int;
#endif

extern "C" boolean_t CGDisplayIsBuiltin(CGDirectDisplayID display);
