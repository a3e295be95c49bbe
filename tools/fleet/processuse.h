#pragma once

#include <QtGlobal>

namespace brimlet::fleet {

/// CPU time of all threads of this process so far.
[[nodiscard]] double cpuMilliseconds();

/// Memory that this process uses.
struct MemoryUse final {
    double privateDirtyKib = 0;
    double heapKib = 0;

    [[nodiscard]] static MemoryUse now();
};

/// Established TCP connections of this process.
[[nodiscard]] qint64 openConnections();

/// Raises the process's limit of descriptors to the hard limit; returns the new limit.
quint64 raiseDescriptorLimit();

} // namespace brimlet::fleet
