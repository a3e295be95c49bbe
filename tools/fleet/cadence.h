#pragma once

#include <QtGlobal>

#include <chrono>

namespace brimlet::fleet {

/// When the host of that index starts, from the first one's start on: evenly over the time, so that
/// the polls of all are as far apart as they can be.
[[nodiscard]] std::chrono::nanoseconds startOffset(int index, int hosts,
                                                   std::chrono::seconds spread);

/// How many requests this many hosts make by their timers in that time: polls, and heartbeats with
/// a token.
[[nodiscard]] qint64 requestsDue(int hosts, double seconds, bool hasToken);

/// How many descriptors the process may have to hold: each host keeps one connection, and one more
/// for some time after a heartbeat, which has its own.
[[nodiscard]] quint64 descriptorsNeeded(int hosts, bool hasToken);

} // namespace brimlet::fleet
