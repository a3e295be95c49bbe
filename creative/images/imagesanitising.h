#pragma once

#include "creative/images/imagevalidation.h"

#include <QByteArray>
#include <QRect>
#include <QtEndian>

namespace brimlet {

/// A validated picture with only those of its bytes that make up the first frame. Comments,
/// profiles, thumbnails, text and later frames are left out and never reach a decoder.
struct SanitisedImage final {
    ImageFacts facts;
    /// The first frame's place on the canvas, in pixels.
    QRect frame;
    /// A complete file again, except for WebP, where it is the frame's chunks without their
    /// container.
    QByteArray body;
};

/// Validate and sanitise one format each; absent for a picture that is refused. The bytes begin
/// with the format's signature.
[[nodiscard]] std::optional<SanitisedImage> sanitisePng(QByteArrayView bytes);
[[nodiscard]] std::optional<SanitisedImage> sanitiseJpeg(QByteArrayView bytes);
[[nodiscard]] std::optional<SanitisedImage> sanitiseGif(QByteArrayView bytes);
[[nodiscard]] std::optional<SanitisedImage> sanitiseWebP(QByteArrayView bytes);

/// The same for bytes of any format; also enforces `kImageBodyLimit`.
[[nodiscard]] std::optional<SanitisedImage> sanitiseImage(QByteArrayView bytes);

/// True when both sides are within `kImageSideLimit` and the pixels and `otherBytes` together
/// within `kImageMemoryLimit`.
[[nodiscard]] bool isAffordable(qint64 width, qint64 height, int bytesPerPixel,
                                qint64 otherBytes = 0);

/// A sanitised image of this size whose frame is the whole canvas, with an empty body.
[[nodiscard]] SanitisedImage wholeCanvas(ImageFormat format, int width, int height);

// The number at this offset. All its bytes must be within `bytes`.
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
