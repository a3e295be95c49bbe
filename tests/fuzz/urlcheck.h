#pragma once

#include <QByteArray>

namespace brimlet {

/// Reads the first line as an address, and the rest as the Location header of its redirect.
///
/// Returns what is wrong, empty when nothing is: an address written and read again must be the
/// same; libcurl, which fetches it, must find the same scheme, host and port; and so must QUrl,
/// which stands for the program that opens the address, if the link rule allows it.
[[nodiscard]] QByteArray checkUrl(const QByteArray& input);

} // namespace brimlet
