#pragma once

#include <QByteArray>

namespace brimlet {

/// Reads the first line as an address, and the rest as the Location header of a redirect from
/// there.
///
/// Returns what is wrong, empty when nothing is: what was read must read the same again, and what
/// passes the link rule must be the same scheme, host and port to libcurl, which fetches it, and
/// the same local host to the program that opens it, for which Qt's reader stands.
[[nodiscard]] QByteArray checkUrl(const QByteArray& input);

} // namespace brimlet
