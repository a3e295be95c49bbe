#pragma once

#include "tests/soak/report.h"

namespace brimlet {

struct DaySettings final {
    double hours = 24; ///< Of the program's time.
    int speed = 60;    ///< A divisor of 3000, so that intervals are whole milliseconds.
    bool isShort = false;
};

/// Runs the program with the placement service and a token in its keyring; counts its requests and
/// records its resource use. Needs a desktop session with a keyring. Throws a `Failure`.
void soakADay(const DaySettings& settings, Report& report);

} // namespace brimlet
