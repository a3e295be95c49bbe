#pragma once

#include "creative/images/imagesifting.h"
#include "creative/images/workbudget.h"

#include <QImage>

#include <optional>

namespace brimlet {

/// The decoder of each format: the first frame on its canvas, at its kept size, premultiplied.
[[nodiscard]] std::optional<QImage> decodePng(const SiftedImage& image, const WorkBudget& budget);
[[nodiscard]] std::optional<QImage> decodeJpeg(const SiftedImage& image, const WorkBudget& budget);
[[nodiscard]] std::optional<QImage> decodeGif(const SiftedImage& image, const WorkBudget& budget);
[[nodiscard]] std::optional<QImage> decodeWebP(const SiftedImage& image, const WorkBudget& budget);

} // namespace brimlet
