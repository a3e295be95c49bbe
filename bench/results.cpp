#include "bench/results.h"

#include "bench/machinefacts.h"
#include "tests/support/failure.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include <nlohmann/json.hpp>

namespace brimlet {
namespace {

/// What a program has said may be long.
std::string oneLine(std::string text) {
    constexpr std::size_t kLongest = 200;
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text.substr(0, kLongest);
}

void print(const Row& row) {
    std::printf("%s: %zu runs%s%s\n", row.name.c_str(), row.runs.size(),
                row.remark.empty() ? "" : "; ", row.remark.c_str());
    if (!row.runs.empty()) {
        for (const auto& [name, value] : medianOf(row.runs)) {
            std::printf("    %-30s %12.3f\n", name.c_str(), value);
        }
    }
    std::fflush(stdout);
}

} // namespace

void Results::add(const std::string& key, const std::string& name,
                  const std::function<Row(Row)>& measure) {
    if (key.find(m_only) == std::string::npos) {
        return;
    }
    const Row empty{.key = key, .name = name};
    try {
        m_rows.push_back(measure(empty));
    } catch (const Failure& failure) {
        ++m_failures;
        m_rows.push_back(empty);
        m_rows.back().remark = oneLine(failure.what());
    }
    print(m_rows.back());
    write();
}

void Results::write() const {
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const Row& row : m_rows) {
        nlohmann::ordered_json written{{"key", row.key}, {"name", row.name}};
        if (!row.runs.empty()) {
            written["median"] = medianOf(row.runs);
            written["greatest"] = greatestOf(row.runs);
            written["runs"] = row.runs;
        }
        if (!row.remark.empty()) {
            written["remark"] = row.remark;
        }
        rows.push_back(std::move(written));
    }
    nlohmann::ordered_json machine(machineFacts());
    machine["qt"] = m_qtVersion;
    const nlohmann::ordered_json results{
        {"version", BRIMLET_VERSION}, {"machine", machine}, {"rows", rows}};
    std::filesystem::create_directories(m_file.parent_path());
    std::ofstream out(m_file);
    out << results.dump(2) << '\n';
    if (!out.flush()) {
        throw std::runtime_error(m_file.string() + " cannot be written");
    }
}

} // namespace brimlet
