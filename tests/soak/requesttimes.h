#pragma once

#include "tests/soak/report.h"

#include <QJsonArray>
#include <QMap>

#include <vector>

namespace brimlet {

/// When requests arrived at the placement service, in milliseconds, by "METHOD path".
using RequestTimes = QMap<QString, std::vector<qint64>>;
[[nodiscard]] RequestTimes timesOf(const QJsonArray& requests);

/// A stretch of real time in milliseconds, begun by the program's first request.
struct Stretch final {
    qint64 start = 0;
    qint64 length = 0;
    int speed = 1; ///< How many times as fast as that the program's time passes.
};

/// Judges which requests came in that time, and how many. In a short run, polls may be missing.
void judgeRequests(Report& report, RequestTimes times, const Stretch& stretch, bool isShort);

} // namespace brimlet
