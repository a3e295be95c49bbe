#pragma once

#include "platform/picturedecoder.h"

#include <QByteArrayView>

#include <optional>

namespace brimlet {

// What the process that decodes a picture answers. Both are of one build, on one machine, so the
// numbers have the machine's byte order.

[[nodiscard]] QByteArray pictureMessage(const Picture& picture);

/// Absent unless the message is of exactly one picture within the limits.
[[nodiscard]] std::optional<Picture> pictureFromMessage(QByteArrayView message);

/// Length of the longest message, in bytes.
[[nodiscard]] qsizetype longestPictureMessage();

} // namespace brimlet
