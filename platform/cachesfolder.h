#pragma once

#include <QString>

#include <optional>

namespace brimlet {

/// Where the user's caches lie.
class CachesFolder {
public:
    virtual ~CachesFolder() = default;

    /// Absolute path without a trailing slash, or absent where the user has none. It need not
    /// exist yet.
    [[nodiscard]] virtual std::optional<QString> path() const = 0;
};

} // namespace brimlet
