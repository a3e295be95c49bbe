#pragma once

#include <QImage>

#include <cstdlib>

namespace brimlet {

/// The share of pixels, from 0 to 1, that differ clearly between two pictures of the same size. A
/// different smoothing of letters changes pixels by up to 26 levels, which does not count.
inline double clearDifference(const QImage& picture, const QImage& other) {
    constexpr int kClear = 32;
    const auto differ = [](int level, int otherLevel) {
        return std::abs(level - otherLevel) > kClear;
    };
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb a = picture.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            if (differ(qRed(a), qRed(b)) || differ(qGreen(a), qGreen(b)) ||
                differ(qBlue(a), qBlue(b))) {
                ++count;
            }
        }
    }
    return double(count) / (double(picture.width()) * picture.height());
}

/// Half of the share that differs when a mark at scale 2 is shifted by one pixel.
inline constexpr double kTolerance = 0.0005;

inline bool looksTheSame(const QImage& picture, const QImage& other) {
    return picture.size() == other.size() && clearDifference(picture, other) <= kTolerance;
}

} // namespace brimlet
