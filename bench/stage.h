#pragma once

#include "bench/childprocess.h"

#include <filesystem>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace brimlet {

/// Where the benchmark finds and puts things.
struct Places final {
    std::filesystem::path programs;    ///< The folder of the built programs.
    std::filesystem::path machineFile; ///< The machine to run on.
    std::filesystem::path scratch;     ///< A folder of the benchmark's own, removed with it.
};

/// A placement service of its own on a free port, and the machine file that points to it.
class Stage final {
public:
    /// With another scenario than the sample brands when one is given. `name` keeps the files of
    /// several stages apart.
    Stage(const Places& places, const std::string& name, const nlohmann::json* scenario = nullptr);

    [[nodiscard]] const std::string& root() const { return m_root; }
    [[nodiscard]] pid_t service() const { return m_service->id(); }
    /// The command that runs one of the programs on the machine.
    [[nodiscard]] std::vector<std::string> command(const std::string& program) const;
    /// How many requests have come.
    [[nodiscard]] std::size_t requests() const;
    /// How many different pictures it has served.
    [[nodiscard]] std::size_t picturesServed() const;

private:
    const Places& m_places;
    std::filesystem::path m_requests;
    std::filesystem::path m_machineFile;
    std::optional<ChildProcess> m_service;
    std::string m_root;
};

/// A scenario with both taglines so long that they scroll for this many seconds at 22 points a
/// second.
[[nodiscard]] nlohmann::json longTaglines(double seconds);

} // namespace brimlet
