#pragma once

#include <QtGlobal>

namespace brimlet {

/// Stands for the process itself where one is asked about.
inline constexpr qint64 kThisProcess = 0;

/// Bytes of memory the process has in use now.
[[nodiscard]] qint64 memoryInUse(qint64 process = kThisProcess);
/// The most it had in use since `forgetPeak`.
[[nodiscard]] qint64 memoryPeak(qint64 process = kThisProcess);
/// False when the system does not let the peak be set back.
[[nodiscard]] bool forgetPeak(qint64 process = kThisProcess);
/// True when a sanitizer's own memory would drown what is measured. The programs a test starts are
/// built as it is.
[[nodiscard]] bool isMemoryDistorted();

[[nodiscard]] int threadCount(qint64 process = kThisProcess);

} // namespace brimlet
