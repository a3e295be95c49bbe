#pragma once

#include "platform/cachesfolder.h"

namespace brimlet {

/// The user's caches where Qt knows them to be: on a Mac Library/Caches.
class QtCachesFolder final : public CachesFolder {
public:
    [[nodiscard]] std::optional<QString> path() const override;
};

} // namespace brimlet
