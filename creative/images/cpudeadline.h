#pragma once

#include <chrono>
#include <functional>

namespace brimlet {

/// Called in the course of some work; true once the work has to be given up.
using CpuDeadline = std::function<bool()>;

/// Passed once the calling thread has used this much CPU time, counted from this call. Time spent
/// waiting does not count. Called on that thread only.
[[nodiscard]] CpuDeadline cpuDeadline(std::chrono::milliseconds limit);

} // namespace brimlet
