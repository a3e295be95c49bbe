#pragma once

#include "platform/cachesfolder.h"

namespace brimlet {

/// $XDG_CACHE_HOME, or .cache in the home folder where that is unset or not absolute. Home is $HOME
/// or what the system has noted for the user, so there is always a path.
class XdgCachesFolder final : public CachesFolder {
public:
    [[nodiscard]] std::optional<QString> path() const override;
};

} // namespace brimlet
