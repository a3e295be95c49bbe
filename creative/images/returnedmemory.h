#pragma once

namespace brimlet {

/// Returns freed memory to the system where the C library would keep it.
void returnFreedMemory();

} // namespace brimlet
