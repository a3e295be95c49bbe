#include "platform/linux/xdgcachesfolder.h"

#include <QDir>
#include <QFile>

#include <pwd.h>
#include <unistd.h>

namespace brimlet {
namespace {

[[nodiscard]] std::optional<QString> absolutePath(const QByteArray& name) {
    const QString path = QFile::decodeName(name);
    if (!path.startsWith(u'/')) {
        return std::nullopt;
    }
    return QDir::cleanPath(path);
}

/// The home folder in the user database; "/nonexistent" for a user without one.
[[nodiscard]] QString homeInDatabase() {
    const passwd* const user =
        getpwuid(getuid()); // NOLINT(concurrency-mt-unsafe): main thread only
    const auto home = absolutePath(user == nullptr ? QByteArray() : QByteArray(user->pw_dir));
    return home.value_or(QStringLiteral("/nonexistent"));
}

} // namespace

std::optional<QString> XdgCachesFolder::path() const {
    if (auto caches = absolutePath(qgetenv("XDG_CACHE_HOME"))) {
        return caches;
    }
    const QString home = absolutePath(qgetenv("HOME")).value_or(homeInDatabase());
    return QDir(home).filePath(QStringLiteral(".cache"));
}

} // namespace brimlet
