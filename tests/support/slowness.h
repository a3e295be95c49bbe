#pragma once

#include <QtGlobal>

namespace brimlet {

/// How much longer than elsewhere tests wait and let things take: under an emulated processor,
/// which `BRIMLET_EMULATED` says, five times as long. Also how much less they compress time.
inline int slowness() {
    static const int times = qEnvironmentVariableIsSet("BRIMLET_EMULATED") ? 5 : 1;
    return times;
}

} // namespace brimlet
