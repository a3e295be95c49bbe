#include "creative/images/imagesanitising.h"

namespace brimlet {
namespace {

constexpr qsizetype kHeaderSize = 13;
constexpr qsizetype kImageDescriptorSize = 10;

/// The bytes of a colour table, from the flags of the descriptor before it.
qsizetype colourTableSize(quint8 flags) {
    return (flags & 0x80) != 0 ? qsizetype{3} << ((flags & 7) + 1) : 0;
}

/// Where the blocks that begin here end, their terminator included; -1 when that is past the end.
qsizetype endOfBlocks(QByteArrayView bytes, qsizetype at) {
    while (at < bytes.size()) {
        const quint8 length = byteAt(bytes, at);
        at += 1 + length;
        if (length == 0) {
            return at;
        }
    }
    return -1;
}

/// A graphic control extension with nothing but the transparent colour of this one. Its disposal
/// method is dropped, since some make the decoder keep a second picture.
QByteArray transparencyOf(QByteArrayView control) {
    const bool isTransparent =
        control.size() >= 8 && byteAt(control, 2) == 4 && (byteAt(control, 3) & 1) != 0;
    if (!isTransparent) {
        return {};
    }
    QByteArray extension = QByteArrayLiteral("!\xf9\x04\x01");
    extension.append(2, '\0').append(control[6]).append('\0');
    return extension;
}

/// Reads the frame whose descriptor begins the bytes, up to its last block.
std::optional<SanitisedImage> readFrame(QByteArrayView header, QByteArrayView bytes,
                                        const QByteArray& transparency) {
    const int right = littleEndian16(bytes, 1) + littleEndian16(bytes, 5);
    const int bottom = littleEndian16(bytes, 3) + littleEndian16(bytes, 7);
    const QRect frame(QPoint(littleEndian16(bytes, 1), littleEndian16(bytes, 3)),
                      QPoint(right - 1, bottom - 1));
    const int screenWidth = littleEndian16(header, 6);
    const int screenHeight = littleEndian16(header, 8);
    // Decoders take a screen of no size to be as large as its first frame.
    const int width = screenWidth > 0 ? screenWidth : right;
    const int height = screenHeight > 0 ? screenHeight : bottom;
    const bool fits = isAffordable(width, height, 4) && isAffordable(right, bottom, 4);
    const qsizetype codeSizeAt = kImageDescriptorSize + colourTableSize(byteAt(bytes, 9));
    if (!fits || frame.isEmpty() || codeSizeAt >= bytes.size()) {
        return std::nullopt;
    }
    const int codeSize = byteAt(bytes, codeSizeAt);
    const qsizetype end = endOfBlocks(bytes, codeSizeAt + 1);
    if (codeSize < 1 || codeSize > 8 || end < 0) {
        return std::nullopt;
    }
    SanitisedImage image = wholeCanvas(ImageFormat::Gif, width, height);
    image.frame = frame;
    image.body.append(header).append(transparency).append(bytes.first(end)).append(';');
    return image;
}

} // namespace

std::optional<SanitisedImage> sanitiseGif(QByteArrayView bytes) {
    if (bytes.size() < kHeaderSize) {
        return std::nullopt;
    }
    qsizetype at = kHeaderSize + colourTableSize(byteAt(bytes, 10));
    if (at > bytes.size()) {
        return std::nullopt;
    }
    const QByteArrayView header = bytes.first(at);
    QByteArray transparency;
    std::optional<SanitisedImage> image;
    // Later frames are skipped, only to check that the file is complete.
    while (at < bytes.size() && bytes[at] != ';') {
        qsizetype blocksAt = at + 2;
        if (bytes[at] == ',' && bytes.size() - at >= kImageDescriptorSize) {
            if (!image && !(image = readFrame(header, bytes.sliced(at), transparency))) {
                return std::nullopt;
            }
            blocksAt = at + kImageDescriptorSize + colourTableSize(byteAt(bytes, at + 9)) + 1;
        } else if (bytes[at] != '!') {
            return std::nullopt;
        }
        const qsizetype end = endOfBlocks(bytes, blocksAt);
        if (end < 0) {
            return std::nullopt;
        }
        if (!image && byteAt(bytes, at + 1) == 0xf9) {
            transparency = transparencyOf(bytes.sliced(at, end - at));
        }
        at = end;
    }
    return at < bytes.size() ? image : std::nullopt;
}

} // namespace brimlet
