#pragma once

#include "bench/childprocess.h"
#include "bench/relay.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace brimlet {

/// Where the benchmark finds and puts things.
struct Places final {
    std::filesystem::path programs;     ///< The folder of the built programs.
    std::filesystem::path machineFile;  ///< The machine to run on.
    std::filesystem::path peerSettings; ///< The folder of the peers' settings.
    std::filesystem::path scratch;      ///< A folder of the benchmark's own, removed with it.
};

/// A placement service of its own on a free port, a relay before it that counts, and the machine
/// file that points to the relay.
class Stage final {
public:
    /// With the sample brands, or another scenario. `name` keeps the files of several stages apart.
    Stage(const Places& places, const std::string& name, const nlohmann::json& scenario);

    [[nodiscard]] const Places& places() const { return m_places; }
    /// Where programs are to ask.
    [[nodiscard]] const std::string& root() const { return m_relay->root(); }
    [[nodiscard]] Traffic traffic() const { return m_relay->traffic(); }
    [[nodiscard]] const Relay& relay() const { return *m_relay; }
    [[nodiscard]] pid_t service() const { return m_service->id(); }
    [[nodiscard]] const std::filesystem::path& machineFile() const { return m_machineFile; }

    /// What the service says from the next request on.
    void setScenario(const nlohmann::json& scenario) const;
    /// Whether the machine's screens sleep; they are awake at first.
    void setScreensAsleep(bool areAsleep) const;
    /// From now on nobody listens at the root.
    void goDown() { m_relay->shut(); }

private:
    const Places& m_places;
    std::filesystem::path m_scenario;
    std::filesystem::path m_machineFile;
    std::optional<ChildProcess> m_service;
    std::unique_ptr<Relay> m_relay;
};

/// The sample brands.
[[nodiscard]] nlohmann::json sampleBrands();

/// Two brands without taglines, so that nothing moves.
[[nodiscard]] nlohmann::json stillBrands(const std::string& leftBrand);

/// A scenario with the longer of the sample taglines for both brands, which scrolls for some 16 s:
/// with brand and pauses a cycle takes about 36 s, the same for both.
[[nodiscard]] nlohmann::json sampleTaglines();

/// A scenario with both taglines so long that they scroll for this many seconds at 22 points a
/// second.
[[nodiscard]] nlohmann::json longTaglines(double seconds);

} // namespace brimlet
