#include "creative/images/returnedmemory.h"

#include <malloc.h>

namespace brimlet {

void returnFreedMemory() {
    malloc_trim(0);
}

} // namespace brimlet
