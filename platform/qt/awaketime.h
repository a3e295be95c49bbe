#pragma once

#include <chrono>

namespace brimlet {

/// How long the machine has been awake since some moment before the program began. Each system has
/// its own clock for that: std::chrono::steady_clock stands still while a machine with Linux
/// sleeps, and goes on while a Mac does.
[[nodiscard]] std::chrono::nanoseconds awakeTime();

} // namespace brimlet
