#pragma once

#include <QByteArray>
#include <QString>

namespace brimlet {

/// True for a folder of certificate authorities in files named by hash, which is how OpenSSL looks
/// them up.
[[nodiscard]] bool isNamedByHash(const QString& folder);

/// The path of such a folder that libcurl uses by default, in the file system's encoding; empty
/// where it uses a single file of all authorities. Determined once.
[[nodiscard]] const QByteArray& authoritiesFolder();

} // namespace brimlet
