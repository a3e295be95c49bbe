#pragma once

#include "picture/picturereading.h"

#include <QImage>

#include <optional>

namespace brimlet {

/// `readPicture` as an image.
[[nodiscard]] inline std::optional<QImage> readImage(const QByteArray& bytes) {
    const auto picture = readPicture(bytes);
    if (!picture) {
        return std::nullopt;
    }
    return QImage(reinterpret_cast<const uchar*>(picture->pixels.constData()), picture->width,
                  picture->height, QImage::Format_ARGB32_Premultiplied)
        .copy();
}

/// Whether its sides are within the limit and every pixel is validly premultiplied.
[[nodiscard]] inline bool isProper(const Picture& picture) {
    for (qsizetype i = 0; i + 3 < picture.pixels.size(); i += 4) {
        const QRgb pixel = *reinterpret_cast<const QRgb*>(picture.pixels.constData() + i);
        if (qMax(qRed(pixel), qMax(qGreen(pixel), qBlue(pixel))) > qAlpha(pixel)) {
            return false;
        }
    }
    return picture.width >= 1 && picture.width <= 128 && picture.height >= 1 &&
           picture.height <= 128 &&
           picture.pixels.size() == qsizetype{4} * picture.width * picture.height;
}

} // namespace brimlet
