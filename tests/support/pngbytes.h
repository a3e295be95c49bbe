#pragma once

#include <QBuffer>
#include <QImage>

namespace brimlet {

/// The image as a PNG file.
inline QByteArray pngOf(const QImage& picture) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    return bytes;
}

/// A PNG of a single colour.
inline QByteArray pngOf(const QColor& color, QSize size = {32, 32}) {
    QImage picture(size, QImage::Format_ARGB32);
    picture.fill(color);
    return pngOf(picture);
}

} // namespace brimlet
