#pragma once

#include <QByteArray>
#include <QString>

namespace brimlet {

/// True for a folder of certificate authorities with a file for each, named by a hash, as OpenSSL
/// looks them up.
[[nodiscard]] bool isNamedByHash(const QString& folder);

/// The folder in which libcurl finds the system's authorities one at a time; empty where there is
/// none, and libcurl's own default is a file of all of them. Looked for once.
[[nodiscard]] const QByteArray& authoritiesFolder();

} // namespace brimlet
