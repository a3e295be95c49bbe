#include "tests/fuzz/imagecheck.h"

#include "creative/images/imagedecoding.h"
#include "creative/images/imagesanitising.h"
#include "creative/images/pictureshrinker.h"

#include <algorithm>

namespace brimlet {
namespace {

/// Passes after a number of checks instead of a time, so that the same bytes always give the same
/// result. The number exceeds the rows of the highest picture.
CpuDeadline countedDeadline() {
    constexpr int kChecks = 10'000;
    return [checks = 0]() mutable { return ++checks > kChecks; };
}

bool isWithinLimits(const SanitisedImage& image, qsizetype inputSize) {
    const ImageFacts& facts = image.facts;
    return isAffordable(facts.width, facts.height, 4) &&
           isAffordable(image.frame.width(), image.frame.height(), 4) &&
           image.body.size() <= inputSize && image.body.capacity() <= 2 * inputSize + 64;
}

/// True when the sanitised file is accepted again, unchanged. Not for WebP, whose container is
/// gone.
bool isAcceptedAgain(const SanitisedImage& image) {
    if (image.facts.format == ImageFormat::WebP) {
        return true;
    }
    const std::optional<SanitisedImage> again = sanitiseImage(image.body);
    return again && again->facts == image.facts && again->frame == image.frame &&
           again->body == image.body;
}

bool isKeptSize(const QImage& picture, const ImageFacts& facts) {
    const QSize size = keptSize(QSize(facts.width, facts.height));
    const bool mayBeTurned = facts.format == ImageFormat::Jpeg;
    return size.width() <= kKeptSideLimit && size.height() <= kKeptSideLimit &&
           (picture.size() == size || (mayBeTurned && picture.size() == size.transposed()));
}

bool isPremultiplied(const QImage& picture) {
    for (int y = 0; y < picture.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        const bool isFine = std::all_of(line, line + picture.width(), [](QRgb pixel) {
            return qMax(qRed(pixel), qMax(qGreen(pixel), qBlue(pixel))) <= qAlpha(pixel);
        });
        if (!isFine) {
            return false;
        }
    }
    return true;
}

} // namespace

QByteArray checkImage(const QByteArray& input) {
    const std::optional<SanitisedImage> image = sanitiseImage(input);
    const std::optional<QImage> picture = decodeImage(input, countedDeadline());
    if (!image) {
        return picture ? "a refused file was decoded" : "";
    }
    if (!isWithinLimits(*image, input.size())) {
        return "the sanitised picture exceeds a limit";
    }
    if (!isAcceptedAgain(*image)) {
        return "the sanitised picture is refused when validated again";
    }
    if (!picture) {
        return {};
    }
    if (!isKeptSize(*picture, image->facts)) {
        return "the picture is not of its kept size";
    }
    if (picture->format() != QImage::Format_ARGB32_Premultiplied ||
        picture->devicePixelRatio() != 1 || !picture->textKeys().isEmpty()) {
        return "the picture is more than pixels";
    }
    if (!isPremultiplied(*picture)) {
        return "a pixel is brighter than its alpha";
    }
    return {};
}

} // namespace brimlet
