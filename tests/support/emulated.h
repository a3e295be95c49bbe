#pragma once

#include <QByteArray>

namespace brimlet {

/// What is emulated, if tests for arm64 run on another processor: only the "processor" or the whole
/// "computer", whose kernel is one for arm64.
inline QByteArray emulated() {
    return qgetenv("BRIMLET_EMULATED");
}

/// How much longer than elsewhere tests wait and let things take, and how much less they compress
/// time.
inline int slowness() {
    static const int times = emulated().isEmpty() ? 1 : 5;
    return times;
}

} // namespace brimlet
