#pragma once

#include "tests/soak/report.h"

namespace brimlet {

struct DaySettings final {
    double hours = 24; ///< As the program counts them.
    int speed = 60;    ///< A divisor of 3000, so that no interval loses a part of a millisecond.
    bool isShort = false;
};

/// The program beside the placement service, with a token in its keyring, left alone: counts its
/// requests and watches what it uses. Needs a desktop session with a keyring. Throws a `Failure`.
void soakADay(const DaySettings& settings, Report& report);

} // namespace brimlet
