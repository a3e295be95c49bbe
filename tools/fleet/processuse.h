#pragma once

#include <QtGlobal>

namespace brimlet::fleet {

/// What all threads of this process have taken so far.
[[nodiscard]] double cpuMilliseconds();

/// What this process has in use.
struct MemoryUse final {
    double privateDirtyKib = 0;
    double heapKib = 0;

    [[nodiscard]] static MemoryUse now();
};

/// TCP connections of this process that stand.
[[nodiscard]] qint64 openConnections();

/// Raises the process's limit of descriptors as far as it may; returns what it then is.
quint64 raiseDescriptorLimit();

} // namespace brimlet::fleet
