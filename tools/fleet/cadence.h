#pragma once

#include <QtGlobal>

#include <chrono>

namespace brimlet::fleet {

/// The time from the first host's start to that of the host with this index. Starts are spread
/// evenly, so that polls are as far apart as possible.
[[nodiscard]] std::chrono::nanoseconds startOffset(int index, int hosts,
                                                   std::chrono::seconds spread);

/// How many requests the timers of this many hosts make in that time: polls and, with a token,
/// heartbeats.
[[nodiscard]] qint64 requestsDue(int hosts, double seconds, bool hasToken);

/// The most descriptors the process needs: each host keeps one connection, and for some time after
/// a heartbeat a second one.
[[nodiscard]] quint64 descriptorsNeeded(int hosts, bool hasToken);

} // namespace brimlet::fleet
