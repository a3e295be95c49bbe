#include "bench/stage.h"

#include "tests/support/failure.h"

#include <fstream>

#include <nlohmann/json.hpp>

namespace brimlet {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

/// As a whole, since others may read it at any time.
void write(const std::filesystem::path& file, const json& value) {
    const std::filesystem::path unfinished = file.string() + ".new";
    std::ofstream out(unfinished);
    out << value.dump();
    if (!out.flush()) {
        throw Failure(file.string() + " cannot be written");
    }
    std::filesystem::rename(unfinished, file);
}

/// What follows the greeting in the service's output; empty until the line is complete.
std::string rootIn(const std::string& output) {
    constexpr std::string_view kGreeting("Listening on ");
    const auto start = output.find(kGreeting);
    const auto end = start == std::string::npos ? start : output.find('\n', start);
    return end == std::string::npos ? std::string()
                                    : output.substr(start, end - start).substr(kGreeting.size());
}

} // namespace

Stage::Stage(const Places& places, const std::string& name, const json& scenario)
    : m_places(places)
    , m_scenario(places.scratch / (name + "-scenario.json"))
    , m_machineFile(places.scratch / (name + "-machine.json")) {
    setScenario(scenario);
    const auto output = places.scratch / (name + "-service.log");
    m_service.emplace(std::vector{(places.programs / "brimlet-placement").string(),
                                  std::string("--port"), std::string("0"),
                                  std::string("--scenario"), m_scenario.string()},
                      output);
    std::string root;
    const auto isListening = [&] {
        root = rootIn(textOf(output));
        return !root.empty() || !m_service->isRunning();
    };
    if (!waitUntil(isListening, 10s) || root.empty()) {
        throw Failure("the placement service did not start: " + textOf(output));
    }
    const auto port = std::stoul(root.substr(root.rfind(':') + 1));
    m_relay = std::make_unique<Relay>(static_cast<std::uint16_t>(port));
    setScreensAsleep(false);
}

void Stage::setScenario(const json& scenario) const {
    write(m_scenario, scenario);
}

void Stage::setScreensAsleep(bool areAsleep) const {
    json machine = json::parse(textOf(m_places.machineFile), nullptr, false);
    if (!machine.is_object()) {
        throw Failure(m_places.machineFile.string() + " is not a machine file");
    }
    machine["infoDictionary"] = {{"BrimletAPIURL", root()}};
    machine["screensAsleep"] = areAsleep;
    write(m_machineFile, machine);
}

json sampleBrands() {
    return json::object();
}

json stillBrands(const std::string& leftBrand) {
    return {{"creatives",
             {{{"slotId", "left"}, {"brandName", leftBrand}},
              {{"slotId", "right"}, {"brandName", "Palindrome Tea"}}}}};
}

namespace {

json withTaglines(const std::string& left, const std::string& right) {
    const auto creative = [](const char* slot, const char* brand, const std::string& tagline,
                             const std::string& name) {
        return json{{"slotId", slot},
                    {"brandName", brand},
                    {"copy", tagline},
                    {"assetUrl", "/assets/" + name + ".png"},
                    {"brandUrl", "/brands/" + name}};
    };
    return {{"creatives",
             {creative("left", "Quiet Bicycle", left, "quiet-bicycle"),
              creative("right", "Palindrome Tea", right, "palindrome-tea")}}};
}

} // namespace

json sampleTaglines() {
    const std::string tagline(
        "Never odd or even: loose-leaf tea that tastes the same forwards and backwards");
    return withTaglines(tagline, tagline);
}

json longTaglines(double seconds) {
    // No usual font at 12 points needs less than this for a letter of such text, on average.
    constexpr double kPointsPerLetter = 5.5;
    constexpr double kPointsPerSecond = 22;
    constexpr double kLine = 73;
    const auto letters =
        static_cast<std::size_t>((seconds * kPointsPerSecond + kLine) / kPointsPerLetter);
    std::string tagline;
    while (tagline.size() < letters) {
        tagline += "Never odd or even: loose-leaf tea. ";
    }
    return withTaglines(tagline, tagline);
}

} // namespace brimlet
