#pragma once

#include "platform/clock.h"

#include <QtGlobal>

#include <memory>
#include <vector>

class QIODevice;

namespace brimlet {

/// Addresses of the process from begin up to, not including, end; both are multiples of the page
/// size.
struct MemoryRange final {
    quintptr begin = 0;
    quintptr end = 0;

    bool operator==(const MemoryRange&) const = default;
};

/// The mappings, in the text of /proc/self/smaps, whose pages all equal those of a file and of
/// which some are in memory. Whatever the size of a page.
std::vector<MemoryRange> unmodifiedFileMappings(QIODevice& smaps);

/// How many bytes of files and shared memory are in the process's memory, by the text of
/// /proc/self/statm; 0 when that cannot be read.
quint64 residentFileBytes(QIODevice& statm, quint64 pageSize);

/// Returns memory to the system that was needed for a moment: free heap, and unmodified pages of
/// libraries and other mapped files, which the kernel reloads from its page cache on the next
/// access. Takes some milliseconds.
void trimMemory();

/// Trims the memory two seconds after its construction, when the start is over, and from then on
/// after each minute in which the program has read a megabyte of its files again, as for the texts
/// of other brands or for the panel. Main thread only.
class MemoryTrim final {
public:
    /// The clock outlives it.
    explicit MemoryTrim(Clock& clock);

private:
    void trim();
    /// `needed` is how much of the files is in memory while nothing happens, in bytes.
    void watch(quint64 needed);

    Clock& m_clock;
    std::unique_ptr<RepeatingTimer> m_timer;
};

} // namespace brimlet
