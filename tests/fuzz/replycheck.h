#pragma once

#include <QByteArray>

namespace brimlet {

/// Lets a whole store take this as a reply's body. The first byte chooses who answers: 'd' the
/// public display, 'D' the same with a token kept, 'm' the host's figures, 'h' the heartbeat.
///
/// Returns what is wrong with what became of it, empty when nothing is: a body that is refused must
/// leave the assignment alone, one that is accepted must be read as Qt's own reader reads it, and
/// the status line must be the one that belongs to it.
[[nodiscard]] QByteArray checkReply(const QByteArray& input);

} // namespace brimlet
