#include "bench/report/findings.h"

#include <algorithm>
#include <fstream>

namespace brimlet {
namespace {

using nlohmann::ordered_json;

/// Neither an object nor an array when there is no such file, or nothing sound in it.
ordered_json jsonIn(const std::filesystem::path& file) {
    std::ifstream in(file);
    return in ? ordered_json::parse(in, nullptr, false) : ordered_json();
}

} // namespace

Findings::Findings(const std::filesystem::path& folder)
    : m_program(jsonIn(folder / "program.json"))
    , m_fleet(jsonIn(folder / "fleet.json"))
    , m_poll(jsonIn(folder / "poll.json")) {
    readMicro(folder);
    if (!m_program.is_object() || !m_program.contains("rows")) {
        m_program = {{"rows", ordered_json::array()}};
        m_absences.emplace_back("The running programs: `bench-program` has left no results.");
    }
    if (!m_fleet.is_array()) {
        m_fleet = ordered_json::array();
        m_absences.emplace_back("Many hosts: `script/fleet` has left no results.");
    }
    if (!m_poll.is_object()) {
        m_poll = ordered_json::object();
        m_absences.emplace_back(
            "Instructions and allocations of a poll: `script/lib/poll-cost` has left no results.");
    }
    if (m_micro.empty()) {
        m_absences.emplace_back("Single steps: the small benchmarks have left no results.");
    }
    for (const ordered_json& row : m_program["rows"]) {
        if (!row.contains("median")) {
            m_absences.push_back(row.value("name", "") + ": " + row.value("remark", "") + '.');
        }
    }
}

void Findings::readMicro(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code gone;
    for (const auto& entry : std::filesystem::directory_iterator(folder, gone)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("micro") && name.ends_with(".json")) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        const ordered_json results = jsonIn(file);
        if (results.is_object() && results.contains("benchmarks")) {
            const ordered_json& benchmarks = results["benchmarks"];
            for (const ordered_json& benchmark : benchmarks) {
                if (!benchmark.value("error_occurred", false)) {
                    m_micro.push_back(benchmark);
                } else if (benchmark.value("repetition_index", 0) == 0) {
                    m_absences.push_back(benchmark.value("name", "") + ": " +
                                         benchmark.value("error_message", "") + '.');
                }
            }
        } else {
            m_absences.push_back("Single steps: " + file.filename().string() +
                                 " is not whole; its benchmark did not end as it should.");
        }
    }
}

std::optional<double> Findings::median(const std::string& key, const std::string& figure) const {
    return figureOf(key, "median", figure);
}

std::optional<double> Findings::greatest(const std::string& key, const std::string& figure) const {
    return figureOf(key, "greatest", figure);
}

std::string Findings::nameOf(const std::string& key) const {
    const ordered_json* const found = row(key);
    return found == nullptr ? key : found->value("name", key);
}

const ordered_json* Findings::row(const std::string& key) const {
    for (const ordered_json& row : m_program["rows"]) {
        if (row.value("key", "") == key) {
            return &row;
        }
    }
    return nullptr;
}

std::optional<double> Findings::figureOf(const std::string& key, const char* kind,
                                         const std::string& figure) const {
    const ordered_json* const found = row(key);
    if (found == nullptr || !found->contains(kind) || !(*found)[kind].contains(figure)) {
        return std::nullopt;
    }
    return (*found)[kind][figure].get<double>();
}

bool isUsual(const ordered_json& hosts) {
    return hosts.value("service", "usual") == "usual";
}

} // namespace brimlet
