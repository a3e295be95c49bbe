#pragma once

#include <QtGlobal>

namespace brimlet {

/// As a process's number: the calling process.
inline constexpr qint64 kThisProcess = 0;

/// Resident bytes of the process.
[[nodiscard]] qint64 memoryInUse(qint64 process = kThisProcess);
/// The most resident bytes since `forgetPeak`.
[[nodiscard]] qint64 memoryPeak(qint64 process = kThisProcess);
/// Resets the peak; false when the system does not allow it.
[[nodiscard]] bool forgetPeak(qint64 process = kThisProcess);
/// True under a sanitizer or an emulated processor, whose own memory would dominate a measurement.
/// The programs that a test starts are built with the same one.
[[nodiscard]] bool isMemoryDistorted();

[[nodiscard]] int threadCount(qint64 process = kThisProcess);

} // namespace brimlet
