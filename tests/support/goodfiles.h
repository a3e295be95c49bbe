#pragma once

#include "tests/support/samplepictures.h"

#include <QList>

#include <utility>

namespace brimlet::samples {

/// A small valid file of each decoded format, by name: 40 by 30 pixels, with the quadrants as its
/// first frame.
[[nodiscard]] inline QList<std::pair<const char*, QByteArray>> goodFiles() {
    const QSize size(40, 30);
    const QImage picture = quadrants(size);
    QImage second(size, QImage::Format_RGB32);
    second.fill(Qt::black);
    return {{"PNG", png(picture)},
            {"interlaced PNG", interlacedPng(picture)},
            {"palette PNG", png(picture.convertToFormat(QImage::Format_Indexed8))},
            {"deep PNG", png(picture.convertToFormat(QImage::Format_RGBA64))},
            {"JPEG", jpeg(picture)},
            {"progressive JPEG", jpeg(picture, true)},
            {"GIF", gif(picture)},
            {"animated GIF", animatedGif({picture, second})},
            {"lossy WebP", webp(picture, false)},
            {"lossless WebP", webp(picture, true)},
            {"animated WebP", animatedWebP(size, {{.place = {}, .picture = picture},
                                                  {.place = {}, .picture = second}})}};
}

} // namespace brimlet::samples
