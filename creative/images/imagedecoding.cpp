#include "creative/images/imagedecoding.h"

#include "creative/images/imagedecoders.h"
#include "creative/images/returnedmemory.h"

namespace brimlet {

using namespace std::chrono_literals;

namespace {

std::optional<QImage> decodeFirstFrame(const SanitisedImage& image, const CpuDeadline& deadline) {
    switch (image.facts.format) {
    case ImageFormat::Png:
        return decodePng(image, deadline);
    case ImageFormat::Jpeg:
        return decodeJpeg(image, deadline);
    case ImageFormat::Gif:
        return decodeGif(image, deadline);
    case ImageFormat::WebP:
        return decodeWebP(image, deadline);
    }
    Q_UNREACHABLE();
}

} // namespace

std::optional<QImage> decodeImage(const QByteArray& bytes) {
    return decodeImage(bytes, cpuDeadline(170ms));
}

std::optional<QImage> decodeImage(const QByteArray& bytes, const CpuDeadline& deadline) {
    const std::optional<SanitisedImage> image = sanitiseImage(bytes);
    if (!image) {
        return std::nullopt;
    }
    std::optional<QImage> picture = decodeFirstFrame(*image, deadline);
    // The allocator would keep the memory that decoders have freed.
    returnFreedMemory();
    return picture;
}

} // namespace brimlet
