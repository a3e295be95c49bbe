#pragma once

#include <QByteArray>
#include <QString>

namespace brimlet {

/// True for a folder of CA certificates in files named by their hash, as OpenSSL looks them up
/// (`openssl rehash`).
[[nodiscard]] bool isNamedByHash(const QString& folder);

/// libcurl's default CA folder if it is such a folder, in the file system's encoding; otherwise
/// empty. Determined once.
[[nodiscard]] const QByteArray& authoritiesFolder();

} // namespace brimlet
