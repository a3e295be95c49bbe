#pragma once

#include "creative/images/cpudeadline.h"
#include "creative/images/imagesanitising.h"

#include <QImage>

#include <optional>

namespace brimlet {

/// One decoder per format. Returns the first frame on its canvas, scaled to `keptSize()`,
/// premultiplied; absent if decoding fails or `deadline` passes.
[[nodiscard]] std::optional<QImage> decodePng(const SanitisedImage& image,
                                              const CpuDeadline& deadline);
[[nodiscard]] std::optional<QImage> decodeJpeg(const SanitisedImage& image,
                                               const CpuDeadline& deadline);
[[nodiscard]] std::optional<QImage> decodeGif(const SanitisedImage& image,
                                              const CpuDeadline& deadline);
[[nodiscard]] std::optional<QImage> decodeWebP(const SanitisedImage& image,
                                               const CpuDeadline& deadline);

} // namespace brimlet
