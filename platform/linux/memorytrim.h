#pragma once

#include "platform/clock.h"

#include <QtGlobal>

#include <memory>
#include <optional>

class QIODevice;

namespace brimlet {

/// How many bytes of files and shared memory are in the process's memory, by the text of
/// /proc/self/statm; 0 when that cannot be read.
[[nodiscard]] quint64 residentFileBytes(QIODevice& statm, quint64 pageSize);

/// Returns memory to the system that was needed for a moment: free heap, and the code and constants
/// of the program and its libraries, which the kernel reloads from its page cache on the next
/// access. Takes about a millisecond. Any thread.
void trimMemory();

/// Trims the memory two seconds after its construction, when the start is over, and a minute later,
/// when the first texts have been shown. From then on, whenever the program has read a megabyte of
/// its files more than in the minute after the last time, as for the panel. Main thread only.
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
    /// Bytes of files in memory a minute after the last trim, unknown until then. Less than any
    /// program has, so that the first minute is followed by a trim.
    std::optional<quint64> m_needed = 0;
};

} // namespace brimlet
