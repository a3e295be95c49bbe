#pragma once

#include "tools/fleet/latencies.h"

#include <QtGlobal>

#include <string>

namespace brimlet::fleet {

/// The figures of all hosts during the measurement.
struct Figures final {
    int hosts = 0;
    double seconds = 0;
    qint64 requestsDue = 0;
    qint64 requestsMade = 0;
    qint64 whole = 0;       ///< Replies of 200 with a body.
    qint64 notModified = 0; ///< Replies of 304, for a kept reply.
    qint64 refused = 0;     ///< Replies of other statuses.
    qint64 unanswered = 0;  ///< Requests without a reply.
    Latencies::Summary polls;
    Latencies::Summary heartbeats; ///< Including those of the start.
    double cpuMilliseconds = 0;
    double kib = 0; ///< Private memory added by the hosts.
    double heapKib = 0;
    qint64 bytesSent = 0;
    qint64 bytesReceived = 0;
    qint64 connectionsOpened = 0; ///< From the first start on.
    qint64 connectionsOpen = 0;   ///< At the end.

    [[nodiscard]] qint64 failed() const { return refused + unanswered; }
};

/// The figures as a Markdown table, ending in a line break.
[[nodiscard]] std::string asTable(const Figures& figures);
/// The figures as one JSON object on one line.
[[nodiscard]] std::string asJson(const Figures& figures);

} // namespace brimlet::fleet
