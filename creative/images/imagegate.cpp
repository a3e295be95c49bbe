#include "creative/images/imagegate.h"

#include "creative/images/imagesifting.h"

namespace brimlet {

bool isAffordable(qint64 width, qint64 height, int bytesPerPixel, qint64 bytesBesides) {
    return width >= 1 && width <= kImageSideLimit && height >= 1 && height <= kImageSideLimit &&
           width * height * bytesPerPixel + bytesBesides <= kImageMemoryLimit;
}

SiftedImage wholeCanvas(ImageFormat format, int width, int height) {
    return {.facts = {.format = format, .width = width, .height = height},
            .frame = QRect(0, 0, width, height),
            .body = {}};
}

std::optional<SiftedImage> siftImage(QByteArrayView bytes) {
    if (bytes.size() > kImageBodyLimit) {
        return std::nullopt;
    }
    if (bytes.startsWith("\x89PNG\r\n\x1a\n")) {
        return siftPng(bytes);
    }
    if (bytes.startsWith("\xff\xd8\xff")) {
        return siftJpeg(bytes);
    }
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a")) {
        return siftGif(bytes);
    }
    if (bytes.size() >= 12 && bytes.startsWith("RIFF") && bytes.sliced(8).startsWith("WEBP")) {
        return siftWebP(bytes);
    }
    return std::nullopt;
}

std::optional<ImageFacts> inspectImage(QByteArrayView bytes) {
    const std::optional<SiftedImage> image = siftImage(bytes);
    return image ? std::optional(image->facts) : std::nullopt;
}

} // namespace brimlet
