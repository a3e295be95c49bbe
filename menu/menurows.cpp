#include "menu/menurows.h"

namespace brimlet {

MenuRows menuRows(const Assignment& week, bool hasNotch) {
    return {
        .notchedOnly = !hasNotch,
        .moveToApplications = !week.fromApplications,
        // An empty slot has no row of its own.
        .leftPanel = week.left.has_value(),
        .rightPanel = week.right.has_value(),
        .noBrand = !week.left && !week.right,
        .split = week.liveHostCount >= 1,
        .banked = week.pendingStipendCents >= 1,
        .agreement = !week.agreed,
    };
}

} // namespace brimlet
