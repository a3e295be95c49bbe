#include "platform/picturemessage.h"

#include "platform/picturelimits.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace brimlet {
namespace {

constexpr qsizetype kBytesPerPixel = 4;

using Sides = std::array<std::uint32_t, 2>;
constexpr qsizetype kHeader = sizeof(Sides);

} // namespace

QByteArray pictureMessage(const Picture& picture) {
    const Sides sides{static_cast<std::uint32_t>(picture.width),
                      static_cast<std::uint32_t>(picture.height)};
    return QByteArray(reinterpret_cast<const char*>(sides.data()), kHeader) + picture.pixels;
}

std::optional<Picture> pictureFromMessage(QByteArrayView message) {
    if (message.size() < kHeader || message.size() > longestPictureMessage()) {
        return std::nullopt;
    }
    Sides sides{};
    std::memcpy(sides.data(), message.data(), kHeader);
    const auto [width, height] = sides;
    if (width < 1 || width > kKeptSideLimit || height < 1 || height > kKeptSideLimit ||
        message.size() != kHeader + kBytesPerPixel * width * height) {
        return std::nullopt;
    }
    return Picture{.width = static_cast<int>(width),
                   .height = static_cast<int>(height),
                   .pixels = message.sliced(kHeader).toByteArray()};
}

qsizetype longestPictureMessage() {
    return kHeader + kBytesPerPixel * kKeptSideLimit * kKeptSideLimit;
}

} // namespace brimlet
