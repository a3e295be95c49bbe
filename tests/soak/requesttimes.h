#pragma once

#include "tests/soak/report.h"

#include <QJsonArray>
#include <QMap>

#include <vector>

namespace brimlet {

/// The arrival times of requests at the placement service, in milliseconds, by "METHOD path".
using RequestTimes = QMap<QString, std::vector<qint64>>;
[[nodiscard]] RequestTimes timesOf(const QJsonArray& requests);

/// A span of real time in milliseconds, from the program's first request.
struct Span final {
    qint64 start = 0;
    qint64 length = 0;
    int speed = 1; ///< How many times as fast the program's time passes.
};

/// Reports the requests of that time. In a short run a fifth of the polls may be missing.
void judgeRequests(Report& report, RequestTimes times, const Span& span, bool isShort);

} // namespace brimlet
