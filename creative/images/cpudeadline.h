#pragma once

#include <chrono>
#include <functional>

namespace brimlet {

/// Polled during long work; returns true once the work must be given up.
using CpuDeadline = std::function<bool()>;

/// A deadline that passes when the calling thread has used this much CPU time from now on; waiting
/// does not count. Call it on that thread only.
[[nodiscard]] CpuDeadline cpuDeadline(std::chrono::milliseconds limit);

} // namespace brimlet
