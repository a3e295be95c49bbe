#include "platform/curl/authorities.h"

#include <QDirIterator>

#include <curl/curl.h>

namespace brimlet {

bool isNamedByHash(const QString& folder) {
    const QString hash = QStringLiteral("[0-9a-f]").repeated(8);
    // Reads no further than to the first one.
    return QDirIterator(folder, {hash + QStringLiteral(".0")}, QDir::Files).hasNext();
}

const QByteArray& authoritiesFolder() {
    static const QByteArray folder = [] {
        const QByteArray known = curl_version_info(CURLVERSION_NOW)->capath;
        return isNamedByHash(QString::fromLocal8Bit(known)) ? known : QByteArray();
    }();
    return folder;
}

TrustOptions trustOptions(TrustStore store, const QByteArray& defaultFolder, const QByteArray& more,
                          bool isMoreFolder) {
    TrustOptions options;
    if (store == TrustStore::System) {
        // By default libcurl asks the system only while no file and no folder is set.
        options.sslOptions = CURLSSLOPT_NATIVE_CA;
    } else {
        // From a folder OpenSSL reads only the certificate it needs; a file of all costs 9 MiB and
        // 20 ms per connection.
        options.folder = defaultFolder;
        options.isDefaultFileOff = !defaultFolder.isEmpty();
    }
    if (!more.isEmpty() && isMoreFolder) {
        options.folder = more;
    } else if (!more.isEmpty()) {
        options.file = more;
        options.isDefaultFileOff = false;
    }
    return options;
}

} // namespace brimlet
