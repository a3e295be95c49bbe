#pragma once

#include <QtGlobal>

namespace brimlet {

/// Bytes of memory this process has in use now.
[[nodiscard]] qint64 memoryInUse();
/// The most it had in use since `forgetPeak`.
[[nodiscard]] qint64 memoryPeak();
/// False when the system does not let the peak be set back.
[[nodiscard]] bool forgetPeak();
/// True when a sanitizer's own memory would drown what is measured.
[[nodiscard]] bool isMemoryDistorted();

} // namespace brimlet
