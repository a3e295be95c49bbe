#include "creative/images/returnedmemory.h"

namespace brimlet {

void returnFreedMemory() {
    // Other C libraries return large blocks as they are freed.
}

} // namespace brimlet
