#pragma once

#include <QBuffer>
#include <QImage>

namespace brimlet {

/// The picture as the bytes of a PNG file.
inline QByteArray pngOf(const QImage& picture) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    return bytes;
}

/// One colour all over.
inline QByteArray pngOf(const QColor& color, QSize size = {32, 32}) {
    QImage picture(size, QImage::Format_ARGB32);
    picture.fill(color);
    return pngOf(picture);
}

} // namespace brimlet
