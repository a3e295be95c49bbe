#pragma once

#include <QtGlobal>

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

/// Returns memory to the system that only the program's start-up needed: free heap, and unmodified
/// pages of libraries and other mapped files, which the kernel reloads from its page cache on the
/// next access. Takes some milliseconds; meant to be called once, some seconds after the start.
void trimStartupMemory();

} // namespace brimlet
