#pragma once

#include <QtGlobal>

namespace brimlet {

/// Longest file of a picture that is read, in bytes.
inline constexpr qsizetype kPictureBytesLimit = qsizetype{4} * 1024 * 1024;
/// Bytes of pictures that wait to be decoded, at most.
inline constexpr qsizetype kWaitingBytesLimit = 4 * kPictureBytesLimit;
/// Longest side of a picture that is read, in pixels.
inline constexpr int kPictureSideLimit = 4096;
/// Longest side of a picture as it is kept, in pixels: the most that is ever drawn.
inline constexpr int kKeptSideLimit = 128;

} // namespace brimlet
