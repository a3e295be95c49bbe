#pragma once

#include <QImage>
#include <QRandomGenerator>

namespace brimlet {

inline constexpr QSize kOrdinary(512, 512);

/// Smooth enough to be packed well, rough enough not to vanish.
[[nodiscard]] inline QImage hills(QSize size) {
    QRandomGenerator random(5);
    QImage picture(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            picture.setPixel(x, y,
                             qRgba((x >> 4) & 255, (y >> 4) & 255, ((x ^ y) >> 5) & 255,
                                   250 + random.bounded(2)));
        }
    }
    return picture;
}

} // namespace brimlet
