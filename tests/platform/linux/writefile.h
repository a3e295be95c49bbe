#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace brimlet {

/// Creates or replaces the file, and creates its folder if needed. False when that failed.
[[nodiscard]] inline bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(content) == content.size();
}

} // namespace brimlet
