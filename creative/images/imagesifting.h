#pragma once

#include "creative/images/imagegate.h"

#include <QByteArray>
#include <QRect>
#include <QtEndian>

namespace brimlet {

/// A picture that passed the gate, and only those of its bytes that make up its first frame:
/// comments, profiles, thumbnails, text and later frames never reach a decoder.
struct SiftedImage final {
    ImageFacts facts;
    /// Where the first frame lies on the canvas.
    QRect frame;
    /// A complete file again, except for WebP, where it is the frame's chunks without their
    /// container.
    QByteArray body;
};

/// The gate of each format. All take bytes that begin with their format's signature.
[[nodiscard]] std::optional<SiftedImage> siftPng(QByteArrayView bytes);
[[nodiscard]] std::optional<SiftedImage> siftJpeg(QByteArrayView bytes);
[[nodiscard]] std::optional<SiftedImage> siftGif(QByteArrayView bytes);
[[nodiscard]] std::optional<SiftedImage> siftWebP(QByteArrayView bytes);

/// The gate of all formats, their common limits included.
[[nodiscard]] std::optional<SiftedImage> siftImage(QByteArrayView bytes);

/// True when both sides, and the memory that so many bytes a pixel and others besides add up to,
/// are within limits.
[[nodiscard]] bool isAffordable(qint64 width, qint64 height, int bytesPerPixel,
                                qint64 bytesBesides = 0);

/// A picture whose first frame covers it.
[[nodiscard]] SiftedImage wholeCanvas(ImageFormat format, int width, int height);

[[nodiscard]] inline quint8 byteAt(QByteArrayView bytes, qsizetype at) {
    return static_cast<quint8>(bytes[at]);
}

[[nodiscard]] inline quint16 littleEndian16(QByteArrayView bytes, qsizetype at) {
    return qFromLittleEndian<quint16>(bytes.sliced(at, 2).data());
}

[[nodiscard]] inline quint16 bigEndian16(QByteArrayView bytes, qsizetype at) {
    return qFromBigEndian<quint16>(bytes.sliced(at, 2).data());
}

[[nodiscard]] inline quint32 littleEndian32(QByteArrayView bytes, qsizetype at) {
    return qFromLittleEndian<quint32>(bytes.sliced(at, 4).data());
}

[[nodiscard]] inline quint32 bigEndian32(QByteArrayView bytes, qsizetype at) {
    return qFromBigEndian<quint32>(bytes.sliced(at, 4).data());
}

} // namespace brimlet
