#pragma once

#include "tools/placement/scenario.h"

#include <optional>
#include <string>

namespace brimlet::placement {

/// A scenario kept in a file that may be edited at any time. The file is read at every look, which
/// costs little for its size and misses no edit, however quick.
class ScenarioFile final {
public:
    explicit ScenarioFile(std::string path);

    /// What a look at the file brought: a new scenario, a new complaint (one line), or neither when
    /// nothing changed since the last look.
    struct News {
        std::optional<Scenario> scenario;
        std::string complaint;
    };
    [[nodiscard]] News look();

private:
    std::string m_path;
    /// The text last seen; absent while the file cannot be read.
    std::optional<std::string> m_seen;
    bool m_looked = false;
};

} // namespace brimlet::placement
