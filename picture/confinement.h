#pragma once

namespace brimlet {

/// Gives up every right of this process but to read from standard input, to write to standard
/// output, to use a bounded amount of memory and CPU time, and to end. Every other system call ends
/// it. Returns whether all of that is in effect; if not, the process must not read anything.
[[nodiscard]] bool confineProcess();

} // namespace brimlet
