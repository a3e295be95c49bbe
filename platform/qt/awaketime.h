#pragma once

#include <chrono>

namespace brimlet {

/// A monotonic clock that stops while the machine sleeps; its zero is some moment before the
/// program started. Each system has its own implementation, because std::chrono::steady_clock stops
/// during sleep on Linux but keeps running on macOS.
[[nodiscard]] std::chrono::nanoseconds awakeTime();

} // namespace brimlet
