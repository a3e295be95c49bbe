#pragma once

namespace brimlet {

/// Returns memory to the system that only the program's start-up needed: free heap, and unmodified
/// pages of libraries and other mapped files, which the kernel reloads from its page cache on the
/// next access. Takes some milliseconds; meant to be called once, some seconds after the start.
void trimStartupMemory();

} // namespace brimlet
