#pragma once

#include "tests/soak/report.h"

namespace brimlet {

struct FaultySettings final {
    int replies = 100'000;
    int speed = 1000; ///< A divisor of 3000, so that intervals are whole milliseconds.
    int seed = 0;     ///< The same one gives the same faults in the same order.
    bool isShort = false;
};

/// Runs the program with a service that spoils half of its replies, pictures included, and compares
/// the resource use before and afterwards. Needs a desktop session. Throws a `Failure`.
void soakInFaults(const FaultySettings& settings, Report& report);

} // namespace brimlet
