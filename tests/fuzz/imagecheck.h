#pragma once

#include <QByteArray>

namespace brimlet {

/// Has the bytes sifted and decoded. Returns what is wrong, empty when nothing is: a picture must
/// be of its kept size and well-formed premultiplied pixels, nothing that the gate refuses may be
/// decoded, and what the gate hands on must pass it again.
[[nodiscard]] QByteArray checkImage(const QByteArray& input);

} // namespace brimlet
