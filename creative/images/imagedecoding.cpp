#include "creative/images/imagedecoding.h"

#include "creative/images/imagedecoders.h"
#include "creative/images/returnedmemory.h"

namespace brimlet {

using namespace std::chrono_literals;

namespace {

std::optional<QImage> decodeFirstFrame(const SiftedImage& image, const WorkBudget& budget) {
    switch (image.facts.format) {
    case ImageFormat::Png:
        return decodePng(image, budget);
    case ImageFormat::Jpeg:
        return decodeJpeg(image, budget);
    case ImageFormat::Gif:
        return decodeGif(image, budget);
    case ImageFormat::WebP:
        return decodeWebP(image, budget);
    }
    Q_UNREACHABLE();
}

} // namespace

std::optional<QImage> decodeImage(const QByteArray& bytes) {
    return decodeImage(bytes, threadTime(170ms));
}

std::optional<QImage> decodeImage(const QByteArray& bytes, const WorkBudget& budget) {
    const std::optional<SiftedImage> image = siftImage(bytes);
    if (!image) {
        return std::nullopt;
    }
    std::optional<QImage> picture = decodeFirstFrame(*image, budget);
    // The allocator keeps what large decoders free, and what many small tables were.
    returnFreedMemory();
    return picture;
}

} // namespace brimlet
