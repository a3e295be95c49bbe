#include "tests/support/samplepictures.h"

#include <QtEndian>

#include <webp/encode.h>

namespace brimlet::samples {
namespace {

QByteArray littleEndian(qint64 number, qsizetype bytes) {
    QByteArray all(8, '\0');
    qToLittleEndian(number, all.data());
    return all.first(bytes);
}

} // namespace

QByteArray webp(const QImage& picture, bool isLossless) {
    const QImage pixels = picture.convertToFormat(QImage::Format_RGBA8888);
    const int stride = static_cast<int>(pixels.bytesPerLine());
    quint8* output = nullptr;
    const size_t size = isLossless ? WebPEncodeLosslessRGBA(pixels.constBits(), pixels.width(),
                                                            pixels.height(), stride, &output)
                                   : WebPEncodeRGBA(pixels.constBits(), pixels.width(),
                                                    pixels.height(), stride, 90, &output);
    const QByteArray bytes(reinterpret_cast<const char*>(output), static_cast<qsizetype>(size));
    WebPFree(output);
    return bytes;
}

QByteArray webpChunk(const char* kind, const QByteArray& data) {
    return kind + littleEndian(data.size(), 4) + data + QByteArray(data.size() % 2, '\0');
}

QByteArray webpFile(const QByteArray& chunks) {
    return "RIFF" + littleEndian(chunks.size() + 4, 4) + "WEBP" + chunks;
}

QByteArray webpCanvas(QSize size, char flags) {
    return webpChunk("VP8X", flags + QByteArray(3, '\0') + littleEndian(size.width() - 1, 3) +
                                 littleEndian(size.height() - 1, 3));
}

QByteArray animatedWebP(QSize canvas, std::initializer_list<WebPFrame> frames) {
    QByteArray chunks = webpCanvas(canvas, 0x12) + webpChunk("ANIM", QByteArray(6, '\0'));
    for (const WebPFrame& frame : frames) {
        const QByteArray place =
            littleEndian(frame.place.x() / 2, 3) + littleEndian(frame.place.y() / 2, 3) +
            littleEndian(frame.picture.width() - 1, 3) +
            littleEndian(frame.picture.height() - 1, 3) + littleEndian(100, 3) + '\0';
        chunks += webpChunk("ANMF", place + webp(frame.picture, true).sliced(12));
    }
    return webpFile(chunks);
}

QByteArray webpOutline(QSize size, bool isLossless) {
    const qint64 width = size.width();
    const qint64 height = size.height();
    if (isLossless) {
        return webpChunk("VP8L",
                         '\x2f' + littleEndian((width - 1) | (height - 1) << 14, 4) + "pixels");
    }
    return webpChunk("VP8 ", QByteArray("\x30\0\0\x9d\x01\x2a", 6) + littleEndian(width, 2) +
                                 littleEndian(height, 2) + "pixels");
}

} // namespace brimlet::samples
