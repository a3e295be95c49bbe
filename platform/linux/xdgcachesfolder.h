#pragma once

#include "platform/cachesfolder.h"

namespace brimlet {

/// $XDG_CACHE_HOME, or $HOME/.cache where that is unset or not absolute; absent without an absolute
/// $HOME either.
class XdgCachesFolder final : public CachesFolder {
public:
    [[nodiscard]] std::optional<QString> path() const override;
};

} // namespace brimlet
