#pragma once

#include <QString>

namespace brimlet {

/// A line on standard error, for those who wait.
void say(const QString& text);

/// Milliseconds of real time, as the service's log has them.
[[nodiscard]] qint64 realTime();
void sleepUntil(qint64 time);

} // namespace brimlet
