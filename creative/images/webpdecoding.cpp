#include "creative/images/imagedecoders.h"
#include "creative/images/pictureshrinker.h"

#include <webp/decode.h>

#include <algorithm>
#include <memory>

namespace brimlet {
namespace {

/// Bytes. Lossy blocks can take less than a bit each; resuming lossless pixels is not cheap.
constexpr qsizetype kLossySlice = qsizetype{2} * 1024;
constexpr qsizetype kLosslessSlice = qsizetype{16} * 1024;

/// The order of channels that makes a QRgb.
constexpr WEBP_CSP_MODE kPremultipliedPixels =
    QSysInfo::ByteOrder == QSysInfo::LittleEndian ? MODE_bgrA : MODE_Argb;

using Decoder = std::unique_ptr<WebPIDecoder, decltype(&WebPIDelete)>;

VP8StatusCode update(const Decoder& decoder, QByteArrayView bytes) {
    return WebPIUpdate(decoder.get(), reinterpret_cast<const quint8*>(bytes.data()),
                       static_cast<size_t>(bytes.size()));
}

/// A lossless picture may ask for 65 000 code tables before its first pixel, and a table can be
/// 1400 times as large as the bytes that describe it. True when the bytes before the pixels are few
/// enough for the memory that the pixels leave.
bool hasRoomForTables(WebPDecoderConfig& config, const SanitisedImage& image) {
    constexpr qint64 kTablesPerByte = 1400;
    constexpr qint64 kTablesAndPixels = qint64{72} * 1024 * 1024;
    // The pixels themselves, and a quarter of a byte for each table that tells tiles of them apart.
    constexpr qint64 kBytesPerPixel = 5;
    const qint64 pixels = qint64{image.frame.width()} * image.frame.height();
    const qint64 limit = (kTablesAndPixels - pixels * kBytesPerPixel) / kTablesPerByte;
    if (!image.body.startsWith("VP8L") || image.body.size() <= limit) {
        return true;
    }
    // libwebp reads nothing before it has an eighth of the length that a body claims, so the start
    // has to claim less than the whole body did.
    QByteArray start = image.body.first(limit);
    qToLittleEndian(static_cast<quint32>(4 * limit), start.data() + 4);
    const Decoder decoder(WebPIDecode(nullptr, 0, &config), &WebPIDelete);
    if (!decoder || update(decoder, start) != VP8_STATUS_SUSPENDED) {
        return false;
    }
    // Set once the pixels begin.
    int width = 0;
    WebPIDecGetRGB(decoder.get(), nullptr, &width, nullptr, nullptr);
    return width > 0;
}

/// Decodes into `target`, whose size it takes. False when that fails or the deadline has passed.
bool decodeInto(QImage& target, const SanitisedImage& image, const CpuDeadline& deadline) {
    WebPDecoderConfig config;
    if (WebPInitDecoderConfig(&config) == 0) {
        return false;
    }
    if (target.size() != image.frame.size()) {
        config.options.use_scaling = 1;
        config.options.scaled_width = target.width();
        config.options.scaled_height = target.height();
        // Their effect is lost in scaling.
        config.options.bypass_filtering = 1;
        config.options.no_fancy_upsampling = 1;
    }
    config.output.colorspace = kPremultipliedPixels;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {.rgba = target.bits(),
                            .stride = static_cast<int>(target.bytesPerLine()),
                            .size = static_cast<size_t>(target.sizeInBytes())};
    if (deadline() || !hasRoomForTables(config, image)) {
        return false;
    }
    const Decoder decoder(WebPIDecode(nullptr, 0, &config), &WebPIDelete);
    const QByteArrayView body = image.body;
    const qsizetype slice = body.startsWith("VP8L") ? kLosslessSlice : kLossySlice;
    VP8StatusCode status = VP8_STATUS_SUSPENDED;
    for (qsizetype at = 0; decoder && status == VP8_STATUS_SUSPENDED && at < body.size();) {
        if (deadline()) {
            return false;
        }
        at = qMin(at + slice, body.size());
        status = update(decoder, body.first(at));
    }
    return status == VP8_STATUS_OK;
}

/// The place of the picture's frame when the picture is drawn in its kept size.
QRect keptFrame(const SanitisedImage& image, QSize kept) {
    const auto scaled = [](int length, int part, int whole) { return length * part / whole; };
    const int left = scaled(image.frame.x(), kept.width(), image.facts.width);
    const int top = scaled(image.frame.y(), kept.height(), image.facts.height);
    const int width = scaled(image.frame.width(), kept.width(), image.facts.width);
    const int height = scaled(image.frame.height(), kept.height(), image.facts.height);
    return {left, top, qMax(width, 1), qMax(height, 1)};
}

} // namespace

std::optional<QImage> decodeWebP(const SanitisedImage& image, const CpuDeadline& deadline) {
    const QSize kept = keptSize(QSize(image.facts.width, image.facts.height));
    const QRect place = keptFrame(image, kept);
    QImage frame(place.size(), QImage::Format_ARGB32_Premultiplied);
    if (!decodeInto(frame, image, deadline)) {
        return std::nullopt;
    }
    if (place.size() == kept) {
        return frame;
    }
    QImage canvas(kept, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    for (int y = 0; y < place.height(); ++y) {
        std::copy_n(reinterpret_cast<const QRgb*>(frame.constScanLine(y)), place.width(),
                    reinterpret_cast<QRgb*>(canvas.scanLine(place.y() + y)) + place.x());
    }
    return canvas;
}

} // namespace brimlet
