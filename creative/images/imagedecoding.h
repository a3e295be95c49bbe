#pragma once

#include "creative/images/cpudeadline.h"

#include <QByteArray>
#include <QImage>

#include <optional>

namespace brimlet {

/// The picture these bytes hold: the first frame, upright, scaled down smoothly to at most 128
/// pixels a side and never up. Premultiplied ARGB32, a device pixel ratio of 1, and nothing but
/// pixels: no text, no profile. Absent when the bytes hold no picture, or one that `inspectImage`
/// refuses or that takes too long. Prints nothing. May be called on any thread, but not on two at
/// once.
[[nodiscard]] std::optional<QImage> decodeImage(const QByteArray& bytes);

/// As above, but given up once `deadline` has passed.
[[nodiscard]] std::optional<QImage> decodeImage(const QByteArray& bytes,
                                                const CpuDeadline& deadline);

} // namespace brimlet
