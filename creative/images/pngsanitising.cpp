#include "creative/images/imagesanitising.h"

namespace brimlet {
namespace {

constexpr qsizetype kSignatureSize = 8;
/// Length, type and checksum around a chunk's data.
constexpr qsizetype kChunkFrame = 12;

bool isDepthOfKind(int depth, int kind) {
    switch (kind) {
    case 0: // grey
        return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16;
    case 3: // palette
        return depth == 1 || depth == 2 || depth == 4 || depth == 8;
    case 2: // colour
    case 4: // grey with alpha
    case 6: // colour with alpha
        return depth == 8 || depth == 16;
    default:
        return false;
    }
}

/// Reads the header chunk's data.
std::optional<SanitisedImage> readHeader(QByteArrayView header) {
    const quint32 width = bigEndian32(header, 0);
    const quint32 height = bigEndian32(header, 4);
    const int depth = byteAt(header, 8);
    const bool isKnown = isDepthOfKind(depth, byteAt(header, 9)) && byteAt(header, 10) == 0 &&
                         byteAt(header, 11) == 0 && byteAt(header, 12) <= 1;
    if (!isKnown || !isAffordable(width, height, depth == 16 ? 8 : 4)) {
        return std::nullopt;
    }
    return wholeCanvas(ImageFormat::Png, static_cast<int>(width), static_cast<int>(height));
}

/// True for a chunk that makes the file invalid: too long for its type, in the wrong place, or
/// critical and unknown.
bool isRefused(QByteArrayView type, QByteArrayView data, bool hasPixels) {
    if (type == "PLTE") {
        return hasPixels || data.isEmpty() || data.size() > qsizetype{3} * 256 ||
               data.size() % 3 != 0;
    }
    if (type == "tRNS") {
        return hasPixels || data.size() > 256;
    }
    const bool isKnown = type == "IHDR" || type == "IDAT" || type == "IEND";
    const bool isOptional = (byteAt(type, 0) & 0x20) != 0;
    return !isKnown && !isOptional;
}

} // namespace

std::optional<SanitisedImage> sanitisePng(QByteArrayView bytes) {
    std::optional<SanitisedImage> image;
    bool hasPixels = false;
    qsizetype at = kSignatureSize;
    while (bytes.size() - at >= kChunkFrame) {
        const quint32 length = bigEndian32(bytes, at);
        if (length > bytes.size() - at - kChunkFrame) {
            return std::nullopt;
        }
        const QByteArrayView chunk = bytes.sliced(at, kChunkFrame + length);
        const QByteArrayView type = chunk.sliced(4, 4);
        const QByteArrayView data = chunk.sliced(8, length);
        at += chunk.size();
        // The header comes first, and once.
        if ((type == "IHDR") == image.has_value() || isRefused(type, data, hasPixels)) {
            return std::nullopt;
        }
        if (!image) {
            image = length == 13 ? readHeader(data) : std::nullopt;
            if (!image) {
                return std::nullopt;
            }
            image->body.reserve(bytes.size());
            image->body.append(bytes.first(kSignatureSize)).append(chunk);
        } else if (type == "IEND") {
            image->body.append(chunk);
            return hasPixels && length == 0 ? image : std::nullopt;
        } else if (type == "PLTE" || type == "tRNS" || (type == "IDAT" && length > 0)) {
            // Empty pieces of the pixels would add nothing but work.
            hasPixels = hasPixels || type == "IDAT";
            image->body.append(chunk);
        }
    }
    return std::nullopt;
}

} // namespace brimlet
