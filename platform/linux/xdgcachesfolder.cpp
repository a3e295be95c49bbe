#include "platform/linux/xdgcachesfolder.h"

#include <QDir>
#include <QFile>

namespace brimlet {
namespace {

[[nodiscard]] std::optional<QString> absolutePath(const char* variable) {
    const QString value = QFile::decodeName(qgetenv(variable));
    if (!value.startsWith(u'/')) {
        return std::nullopt;
    }
    return QDir::cleanPath(value);
}

} // namespace

std::optional<QString> XdgCachesFolder::path() const {
    if (auto caches = absolutePath("XDG_CACHE_HOME")) {
        return caches;
    }
    if (const auto home = absolutePath("HOME")) {
        return QDir(*home).filePath(QStringLiteral(".cache"));
    }
    return std::nullopt;
}

} // namespace brimlet
