#pragma once

#include "tests/soak/report.h"

namespace brimlet {

struct FaultySettings final {
    int replies = 100'000;
    int speed = 1000; ///< A divisor of 3000, so that no interval loses a part of a millisecond.
    int seed = 0;     ///< The same one gives the same faults in the same order.
    bool isShort = false;
};

/// The program beside a service half of whose replies have something wrong with them, pictures
/// included: what is in use afterwards is judged by what was before. Needs a desktop session.
/// Throws a `Failure`.
void soakInFaults(const FaultySettings& settings, Report& report);

} // namespace brimlet
