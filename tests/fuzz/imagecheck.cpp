#include "tests/fuzz/imagecheck.h"

#include "creative/images/imagedecoding.h"
#include "creative/images/imagesifting.h"
#include "creative/images/pictureshrinker.h"

#include <algorithm>

namespace brimlet {
namespace {

/// Counts the questions, so that the same bytes always go the same way. More than the highest
/// picture has rows.
WorkBudget countedBudget() {
    constexpr int kQuestions = 10'000;
    return [asked = 0]() mutable { return ++asked > kQuestions; };
}

bool isWithinLimits(const SiftedImage& image, qsizetype inputSize) {
    const ImageFacts& facts = image.facts;
    return isAffordable(facts.width, facts.height, 4) &&
           isAffordable(image.frame.width(), image.frame.height(), 4) &&
           image.body.size() <= inputSize && image.body.capacity() <= 2 * inputSize + 64;
}

/// All but WebP, which loses its container, are handed on as whole files.
bool passesAgain(const SiftedImage& image) {
    if (image.facts.format == ImageFormat::WebP) {
        return true;
    }
    const std::optional<SiftedImage> again = siftImage(image.body);
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
    const std::optional<SiftedImage> image = siftImage(input);
    const std::optional<QImage> picture = decodeImage(input, countedBudget());
    if (!image) {
        return picture ? "a refused file was decoded" : "";
    }
    if (!isWithinLimits(*image, input.size())) {
        return "the gate let more through than it may";
    }
    if (!passesAgain(*image)) {
        return "what the gate let through it refuses";
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
