#pragma once

#include "platform/cachesfolder.h"

namespace brimlet {

/// $XDG_CACHE_HOME, or ".cache" in the home folder when that is unset or not absolute. The home
/// folder is $HOME or the one in the user database. There is always a path, though it may not
/// exist.
class XdgCachesFolder final : public CachesFolder {
public:
    [[nodiscard]] std::optional<QString> path() const override;
};

} // namespace brimlet
