#pragma once

#include <QByteArrayView>

#include <optional>

namespace brimlet {

enum class ImageFormat { Png, Jpeg, Gif, WebP };

/// Longest body that is looked at, in bytes.
inline constexpr qsizetype kImageBodyLimit = qsizetype{4} * 1024 * 1024;
/// Widest and highest picture, in pixels.
inline constexpr int kImageSideLimit = 4096;
/// Most memory a decoder may take for one picture, in bytes.
inline constexpr qint64 kImageMemoryLimit = qint64{64} * 1024 * 1024;

/// What a picture says of itself.
struct ImageFacts final {
    ImageFormat format = ImageFormat::Png;
    /// Pixels, as stored: of an animation the whole canvas, of a turned photograph before turning.
    int width = 0;
    int height = 0;

    bool operator==(const ImageFacts&) const = default;
};

/// Walks over the whole file, copies what a decoder would be given, at most the file again, and
/// allocates no pixels. Absent when the bytes are of no known format, cut
/// short, broken on the surface, or would cost too much to decode. The format is told by the first
/// bytes, never by a name or a promised type.
[[nodiscard]] std::optional<ImageFacts> inspectImage(QByteArrayView bytes);

} // namespace brimlet
