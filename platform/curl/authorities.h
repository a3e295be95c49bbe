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

/// Where the certificates of the authorities are that a system trusts.
enum class TrustStore {
    Files,  ///< Files that OpenSSL reads.
    System, ///< A store of its own, which libcurl asks after OpenSSL has refused a certificate.
};

/// The values of libcurl's options that say whom a transfer trusts; an empty path is not set.
struct TrustOptions final {
    long sslOptions = 0;           ///< CURLOPT_SSL_OPTIONS
    QByteArray folder;             ///< CURLOPT_CAPATH
    QByteArray file;               ///< CURLOPT_CAINFO
    bool isDefaultFileOff = false; ///< CURLOPT_CAINFO is set to no file at all.
};

/// `defaultFolder` is `authoritiesFolder()`; `more` as for CurlHttpClient, a folder of certificates
/// if `isMoreFolder`, otherwise a file.
[[nodiscard]] TrustOptions trustOptions(TrustStore store, const QByteArray& defaultFolder,
                                        const QByteArray& more, bool isMoreFolder);

} // namespace brimlet
