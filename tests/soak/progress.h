#pragma once

#include <QString>

namespace brimlet {

/// Prints a line to standard error.
void printProgress(const QString& text);

/// The wall clock in milliseconds since 1970, as in the service's log.
[[nodiscard]] qint64 realTime();
void sleepUntil(qint64 time);

} // namespace brimlet
