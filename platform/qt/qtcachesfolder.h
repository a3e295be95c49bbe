#pragma once

#include "platform/cachesfolder.h"

namespace brimlet {

/// QStandardPaths::GenericCacheLocation; on a Mac that is ~/Library/Caches.
class QtCachesFolder final : public CachesFolder {
public:
    [[nodiscard]] std::optional<QString> path() const override;
};

} // namespace brimlet
