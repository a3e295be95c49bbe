#include "bench/stage.h"

#include "bench/failure.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include <nlohmann/json.hpp>

namespace brimlet {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

void write(const std::filesystem::path& file, const json& value) {
    std::ofstream out(file);
    out << value.dump();
    if (!out.flush()) {
        throw Failure(file.string() + " cannot be written");
    }
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

Stage::Stage(const Places& places, const std::string& name, const json* scenario)
    : m_places(places)
    , m_requests(places.scratch / (name + "-requests.jsonl"))
    , m_machineFile(places.scratch / (name + "-machine.json")) {
    std::vector<std::string> command{(places.programs / "brimlet-placement").string(), "--port",
                                     "0", "--log", m_requests.string()};
    if (scenario != nullptr) {
        const auto file = places.scratch / (name + "-scenario.json");
        write(file, *scenario);
        command.insert(command.end(), {"--scenario", file.string()});
    }
    const auto output = places.scratch / (name + "-service.log");
    m_service.emplace(command, output);
    const auto isListening = [&] {
        m_root = rootIn(textOf(output));
        return !m_root.empty() || !m_service->isRunning();
    };
    if (!waitUntil(isListening, 10s) || m_root.empty()) {
        throw Failure("the placement service did not start: " + textOf(output));
    }
    json machine = json::parse(textOf(places.machineFile), nullptr, false);
    if (!machine.is_object()) {
        throw Failure(places.machineFile.string() + " is not a machine file");
    }
    machine["infoDictionary"] = {{"BrimletAPIURL", m_root}};
    write(m_machineFile, machine);
}

std::vector<std::string> Stage::command(const std::string& program) const {
    return {(m_places.programs / program).string(), "--machine", m_machineFile.string()};
}

std::size_t Stage::requests() const {
    const std::string lines = textOf(m_requests);
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
}

std::size_t Stage::picturesServed() const {
    std::set<std::string> paths;
    std::istringstream lines(textOf(m_requests));
    for (std::string line; std::getline(lines, line);) {
        const json request = json::parse(line, nullptr, false);
        if (request.is_object() && request.value("status", json()) == 200) {
            const std::string path = request.value("path", std::string());
            if (path.starts_with("/assets/")) {
                paths.insert(path);
            }
        }
    }
    return paths.size();
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
    const auto creative = [&](const char* slot, const char* brand, const std::string& name) {
        return json{{"slotId", slot},
                    {"brandName", brand},
                    {"copy", tagline},
                    {"assetUrl", "/assets/" + name + ".png"},
                    {"brandUrl", "/brands/" + name}};
    };
    return {{"creatives",
             {creative("left", "Quiet Bicycle", "quiet-bicycle"),
              creative("right", "Palindrome Tea", "palindrome-tea")}}};
}

} // namespace brimlet
