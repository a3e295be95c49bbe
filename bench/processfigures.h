#pragma once

#include <cstdint>

#include <sys/types.h>

namespace brimlet {

/// What the kernel knows of a running process.
struct ProcessFigures final {
    std::int64_t pssKib = 0;          ///< Proportional share of memory.
    std::int64_t ussKib = 0;          ///< Memory of its own, clean and dirty.
    std::int64_t privateDirtyKib = 0; ///< What it wrote itself.
    double cpuMilliseconds = 0;       ///< User and system, since its start.
    std::int64_t contextSwitches = 0; ///< Over all threads, since their start.
    int threads = 0;
};

/// Reads /proc; all zero when the process is gone.
[[nodiscard]] ProcessFigures readProcessFigures(pid_t process);

} // namespace brimlet
