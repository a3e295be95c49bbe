#include "platform/qt/qtcachesfolder.h"

#include <QStandardPaths>

namespace brimlet {

std::optional<QString> QtCachesFolder::path() const {
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

} // namespace brimlet
