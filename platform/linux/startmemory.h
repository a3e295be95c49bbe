#pragma once

namespace brimlet {

/// Gives back the memory that only the program's start needed: freed heap, and pages of libraries
/// and other files that were read but never written. What is needed again comes back from the
/// system's page cache by itself. Takes some milliseconds; meant to be called once, a while after
/// the start.
void giveBackStartMemory();

} // namespace brimlet
