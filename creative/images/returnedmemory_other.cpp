#include "creative/images/returnedmemory.h"

namespace brimlet {

void returnFreedMemory() {
    // Other C libraries give large blocks back as they are freed.
}

} // namespace brimlet
