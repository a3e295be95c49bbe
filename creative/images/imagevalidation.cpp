#include "creative/images/imagevalidation.h"

#include "creative/images/imagesanitising.h"

namespace brimlet {

bool isAffordable(qint64 width, qint64 height, int bytesPerPixel, qint64 otherBytes) {
    return width >= 1 && width <= kImageSideLimit && height >= 1 && height <= kImageSideLimit &&
           width * height * bytesPerPixel + otherBytes <= kImageMemoryLimit;
}

SanitisedImage wholeCanvas(ImageFormat format, int width, int height) {
    return {.facts = {.format = format, .width = width, .height = height},
            .frame = QRect(0, 0, width, height),
            .body = {}};
}

std::optional<SanitisedImage> sanitiseImage(QByteArrayView bytes) {
    if (bytes.size() > kImageBodyLimit) {
        return std::nullopt;
    }
    if (bytes.startsWith("\x89PNG\r\n\x1a\n")) {
        return sanitisePng(bytes);
    }
    if (bytes.startsWith("\xff\xd8\xff")) {
        return sanitiseJpeg(bytes);
    }
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a")) {
        return sanitiseGif(bytes);
    }
    if (bytes.size() >= 12 && bytes.startsWith("RIFF") && bytes.sliced(8).startsWith("WEBP")) {
        return sanitiseWebP(bytes);
    }
    return std::nullopt;
}

std::optional<ImageFacts> inspectImage(QByteArrayView bytes) {
    const std::optional<SanitisedImage> image = sanitiseImage(bytes);
    return image ? std::optional(image->facts) : std::nullopt;
}

} // namespace brimlet
