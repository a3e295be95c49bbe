#include "platform/curl/authorities.h"

#include <QDir>

#include <curl/curl.h>

namespace brimlet {

bool isNamedByHash(const QString& folder) {
    const QString hash = QStringLiteral("[0-9a-f]").repeated(8);
    return !QDir(folder)
                .entryList({hash + QStringLiteral(".0")}, QDir::Files, QDir::Unsorted)
                .isEmpty();
}

const QByteArray& authoritiesFolder() {
    static const QByteArray folder = [] {
        const QByteArray known = curl_version_info(CURLVERSION_NOW)->capath;
        return isNamedByHash(QString::fromLocal8Bit(known)) ? known : QByteArray();
    }();
    return folder;
}

} // namespace brimlet
