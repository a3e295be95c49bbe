#pragma once

#include <QByteArray>

namespace brimlet {

/// Gives a whole store these bytes as a reply. The first byte chooses the endpoint: 'd' the public
/// display, 'D' the same with a token kept, 'm' the host's figures, 'h' the heartbeat. The rest is
/// the body.
///
/// Returns what is wrong, empty when nothing is: a refused body must not change the assignment,
/// Qt's JSON reader must read an accepted one the same, and the status line must match the reply.
[[nodiscard]] QByteArray checkReply(const QByteArray& input);

} // namespace brimlet
