#include "creative/images/imagesanitising.h"

#include <webp/decode.h>

namespace brimlet {
namespace {

constexpr qsizetype kContainerHeader = 12;
constexpr qsizetype kChunkHeader = 8;
constexpr qsizetype kCanvasHeader = 10;
constexpr qsizetype kFrameHeader = 16;
/// In WebPBitstreamFeatures.
constexpr int kLosslessFormat = 2;

/// A chunk's kind and data. The kind is empty when there is no whole chunk.
struct Chunk final {
    QByteArrayView kind;
    QByteArrayView data;
    QByteArrayView whole;
};

/// Takes the first chunk off the bytes, with the byte that pads it to an even length.
Chunk takeChunk(QByteArrayView& bytes) {
    if (bytes.size() < kChunkHeader || littleEndian32(bytes, 4) > bytes.size() - kChunkHeader) {
        return {};
    }
    const qsizetype length = littleEndian32(bytes, 4);
    const qsizetype padded = qMin(kChunkHeader + length + length % 2, bytes.size());
    const Chunk chunk{.kind = bytes.first(4),
                      .data = bytes.sliced(kChunkHeader, length),
                      .whole = bytes.first(padded)};
    bytes = bytes.sliced(padded);
    return chunk;
}

int littleEndian24(QByteArrayView bytes, qsizetype at) {
    return littleEndian16(bytes, at) | byteAt(bytes, at + 2) << 16;
}

/// The chunks of the first picture among these: its alpha channel, if apart, and its pixels.
QByteArray pictureChunks(QByteArrayView bytes) {
    QByteArray picture;
    while (true) {
        const Chunk chunk = takeChunk(bytes);
        if (chunk.kind.isEmpty()) {
            return {};
        }
        if (chunk.kind == "ALPH" && picture.isEmpty()) {
            picture.append(chunk.whole);
        } else if (chunk.kind == "VP8 ") {
            return picture.append(chunk.whole);
        } else if (chunk.kind == "VP8L") {
            return chunk.whole.toByteArray();
        }
    }
}

/// The most bytes that the code tables of a compressed alpha channel can take: one set for each
/// tile of 4 by 4 pixels, limited by the channel's length. The decoder cannot be stopped while it
/// builds them, since it unpacks the channel in one call.
qint64 alphaTables(QByteArrayView body, int width, int height) {
    constexpr int kTablesOfTile = 6000;
    constexpr int kTablesPerByte = 1400;
    if (!body.startsWith("ALPH") || body.size() <= kChunkHeader ||
        (byteAt(body, kChunkHeader) & 3) == 0) {
        return 0;
    }
    const qint64 tiles = qint64{(width + 3) / 4} * ((height + 3) / 4);
    return qMin(tiles * kTablesOfTile, qint64{littleEndian32(body, 4)} * kTablesPerByte);
}

/// The picture whose chunks these are, on a canvas of its own size.
std::optional<SanitisedImage> readPicture(QByteArrayView bytes) {
    QByteArray body = pictureChunks(bytes);
    WebPBitstreamFeatures features{};
    if (body.isEmpty() ||
        WebPGetFeatures(reinterpret_cast<const quint8*>(body.constData()),
                        static_cast<size_t>(body.size()), &features) != VP8_STATUS_OK) {
        return std::nullopt;
    }
    // Lossless pixels are unpacked beside their code tables, and a separate alpha channel beside
    // the lossless pixels it came in.
    const bool isLossless = features.format == kLosslessFormat;
    const int bytesPerPixel = isLossless ? 6 : body.startsWith("ALPH") ? 5 : 4;
    if (!isAffordable(features.width, features.height, bytesPerPixel,
                      alphaTables(body, features.width, features.height))) {
        return std::nullopt;
    }
    SanitisedImage image = wholeCanvas(ImageFormat::WebP, features.width, features.height);
    image.body = std::move(body);
    return image;
}

/// The first frame of an animation, on its canvas.
std::optional<SanitisedImage> readFirstFrame(QByteArrayView bytes, int width, int height) {
    Chunk chunk = takeChunk(bytes);
    while (!chunk.kind.isEmpty() && chunk.kind != "ANMF") {
        chunk = takeChunk(bytes);
    }
    if (chunk.kind.isEmpty() || chunk.data.size() < kFrameHeader) {
        return std::nullopt;
    }
    std::optional<SanitisedImage> image = readPicture(chunk.data.sliced(kFrameHeader));
    if (image) {
        const QPoint place(2 * littleEndian24(chunk.data, 0), 2 * littleEndian24(chunk.data, 3));
        image->frame.moveTopLeft(place);
        image->facts.width = width;
        image->facts.height = height;
    }
    return image;
}

} // namespace

std::optional<SanitisedImage> sanitiseWebP(QByteArrayView bytes) {
    const qint64 length = littleEndian32(bytes, 4);
    if (length < 4 || length > bytes.size() - 8) {
        return std::nullopt;
    }
    const QByteArrayView chunks = bytes.first(length + 8).sliced(kContainerHeader);
    QByteArrayView rest = chunks;
    const Chunk first = takeChunk(rest);
    if (first.kind == "VP8 " || first.kind == "VP8L") {
        return readPicture(chunks);
    }
    if (first.kind != "VP8X" || first.data.size() < kCanvasHeader) {
        return std::nullopt;
    }
    const int width = littleEndian24(first.data, 4) + 1;
    const int height = littleEndian24(first.data, 7) + 1;
    const bool isAnimated = (byteAt(first.data, 0) & 2) != 0;
    if (!isAffordable(width, height, 4)) {
        return std::nullopt;
    }
    const std::optional<SanitisedImage> image =
        isAnimated ? readFirstFrame(rest, width, height) : readPicture(rest);
    const QRect canvas(0, 0, width, height);
    return image && canvas.contains(image->frame) && (isAnimated || canvas == image->frame)
               ? image
               : std::nullopt;
}

} // namespace brimlet
