#include "tools/fleet/cadence.h"

#include <cmath>

namespace brimlet::fleet {
namespace {

constexpr double kPollSeconds = 3;
constexpr double kHeartbeatSeconds = 900;

/// For everything but connections.
constexpr quint64 kOtherDescriptors = 64;

} // namespace

std::chrono::nanoseconds startOffset(int index, int hosts, std::chrono::seconds spread) {
    return std::chrono::nanoseconds(spread) * index / hosts;
}

qint64 requestsDue(int hosts, double seconds, bool hasToken) {
    const double rate = 1 / kPollSeconds + (hasToken ? 1 / kHeartbeatSeconds : 0);
    return std::llround(hosts * seconds * rate);
}

quint64 descriptorsNeeded(int hosts, bool hasToken) {
    return static_cast<quint64>(hosts) * (hasToken ? 2 : 1) + kOtherDescriptors;
}

} // namespace brimlet::fleet
