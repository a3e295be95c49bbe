#pragma once

namespace brimlet {

/// Gives freed memory back to the system, where the C library would keep it for later.
void returnFreedMemory();

} // namespace brimlet
