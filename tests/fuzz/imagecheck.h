#pragma once

#include <QByteArray>

namespace brimlet {

/// Reads a picture from the bytes. Returns what is wrong, empty when nothing is: a picture must
/// have a size within the limits and validly premultiplied pixels.
[[nodiscard]] QByteArray checkImage(const QByteArray& input);

} // namespace brimlet
