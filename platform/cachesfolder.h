#pragma once

#include <QString>

#include <optional>

namespace brimlet {

/// The folder for the user's caches. Main thread only.
class CachesFolder {
public:
    virtual ~CachesFolder() = default;

    /// An absolute path without a trailing slash; the folder may not exist yet. Absent where the
    /// user has none.
    [[nodiscard]] virtual std::optional<QString> path() const = 0;
};

} // namespace brimlet
