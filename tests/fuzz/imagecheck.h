#pragma once

#include <QByteArray>

namespace brimlet {

/// Sanitises and decodes the bytes. Returns what is wrong, empty when nothing is: refused bytes
/// must not be decoded, sanitised ones must be accepted again, and a picture must have its kept
/// size and validly premultiplied pixels.
[[nodiscard]] QByteArray checkImage(const QByteArray& input);

} // namespace brimlet
