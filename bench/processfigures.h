#pragma once

#include <cstdint>
#include <vector>

#include <sys/types.h>

namespace brimlet {

/// What the kernel knows of a running process.
struct ProcessFigures final {
    std::int64_t pssKib = 0;          ///< Proportional share of memory.
    std::int64_t ussKib = 0;          ///< Memory of its own, clean and dirty.
    std::int64_t privateDirtyKib = 0; ///< What it wrote itself.
    double cpuMilliseconds = 0;       ///< User and system, since its start, ended threads too.
    double childrenMilliseconds = 0;  ///< The same of its ended and awaited child processes.
    std::int64_t voluntary = 0;       ///< Context switches of its living threads: they waited.
    std::int64_t involuntary = 0;     ///< Likewise: the processor was taken from them.
    int threads = 0;

    ProcessFigures& operator+=(const ProcessFigures& other);
};

/// Reads /proc; all zero when the process is gone.
[[nodiscard]] ProcessFigures readProcessFigures(pid_t process);

/// The process and its living descendants.
[[nodiscard]] std::vector<pid_t> processTree(pid_t root);

/// The sum over these processes.
[[nodiscard]] ProcessFigures readProcessFigures(const std::vector<pid_t>& processes);

} // namespace brimlet
