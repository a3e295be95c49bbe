#pragma once

#include "platform/clock.h"

#include <QtGlobal>

#include <memory>

class QIODevice;

namespace brimlet {

/// How many bytes of files and shared memory are in the process's memory, by the text of
/// /proc/self/statm; 0 when that cannot be read.
[[nodiscard]] quint64 residentFileBytes(QIODevice& statm, quint64 pageSize);

/// Returns memory to the system that was needed for a moment: free heap, and the code and constants
/// of the program and its libraries, which the kernel reloads from its page cache on the next
/// access, and with it the breakpoints of a debugger. Takes about a millisecond. Any thread.
void trimMemory();

/// Trims the memory two seconds after its construction, when the start is over, and then whenever a
/// megabyte of the program's files is in memory beyond what is needed all the time, as after the
/// panel was open. What is back a minute after each of two trims is needed. Main thread only.
class MemoryTrim final {
public:
    /// The clock outlives it.
    explicit MemoryTrim(Clock& clock);
    /// Call it now and then when the program is awake; it looks at most once a minute.
    void check();

private:
    Clock& m_clock;
    std::unique_ptr<RepeatingTimer> m_start;
    std::chrono::nanoseconds m_next; ///< The uptime from which on `check` looks again.
    quint64 m_needed = 0;            ///< Bytes of files; 0 until it is known.
    int m_trims = 0;                 ///< In the last minutes, without a break.
};

} // namespace brimlet
