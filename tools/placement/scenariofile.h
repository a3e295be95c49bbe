#pragma once

#include "tools/placement/scenario.h"

#include <optional>
#include <string>

namespace brimlet::placement {

/// A scenario in a file that may be edited at any time. Every reload reads the whole file, which is
/// small, so that no edit is missed.
class ScenarioFile final {
public:
    explicit ScenarioFile(std::string path);

    /// A new scenario, a new complaint (one line), or neither when the file is unchanged since the
    /// last reload.
    struct Update {
        std::optional<Scenario> scenario;
        std::string complaint;
    };
    [[nodiscard]] Update reload();

private:
    std::string m_path;
    /// The text at the last reload; absent when it could not be read.
    std::optional<std::string> m_text;
    bool m_isLoaded = false;
};

} // namespace brimlet::placement
