#pragma once

#include <QByteArrayView>

#include <optional>

namespace brimlet {

enum class ImageFormat { Png, Jpeg, Gif, WebP };

/// Longest body that is read, in bytes.
inline constexpr qsizetype kImageBodyLimit = qsizetype{4} * 1024 * 1024;
/// Widest and highest picture, in pixels.
inline constexpr int kImageSideLimit = 4096;
/// Most memory a decoder may take for one picture, in bytes.
inline constexpr qint64 kImageMemoryLimit = qint64{64} * 1024 * 1024;

/// A picture's format and size, from its header.
struct ImageFacts final {
    ImageFormat format = ImageFormat::Png;
    /// Pixels, as stored: for an animation the whole canvas; for a photograph before its EXIF
    /// rotation.
    int width = 0;
    int height = 0;

    bool operator==(const ImageFacts&) const = default;
};

/// Validates the whole file without decoding it. Allocates no pixels, and at most the file's size
/// for a copy of what a decoder would get. Absent when the bytes are of no known format, cut short,
/// malformed, or would cost too much to decode. The format is recognised by the first bytes, never
/// by a name or a declared type.
[[nodiscard]] std::optional<ImageFacts> inspectImage(QByteArrayView bytes);

} // namespace brimlet
