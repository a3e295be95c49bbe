#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace brimlet {

/// All that was measured, as its parts have left it in one folder. A part that is not there is
/// empty, and whoever asks for a figure of it gets none.
class Findings final {
public:
    explicit Findings(const std::filesystem::path& folder);

    /// A figure of the running programs, e.g. "brimlet.rest" and "pssMib".
    [[nodiscard]] std::optional<double> median(const std::string& key,
                                               const std::string& figure) const;
    [[nodiscard]] std::optional<double> greatest(const std::string& key,
                                                 const std::string& figure) const;
    /// What a row is called; its key when it is not there.
    [[nodiscard]] std::string nameOf(const std::string& key) const;

    [[nodiscard]] const nlohmann::ordered_json& program() const { return m_program; }
    /// One object for each number of hosts.
    [[nodiscard]] const nlohmann::ordered_json& fleet() const { return m_fleet; }
    [[nodiscard]] const nlohmann::ordered_json& poll() const { return m_poll; }
    /// The benchmarks of all files of that kind, one after another.
    [[nodiscard]] const nlohmann::ordered_json& micro() const { return m_micro; }
    /// What is not there, each with how to get it.
    [[nodiscard]] const std::vector<std::string>& absences() const { return m_absences; }

private:
    [[nodiscard]] const nlohmann::ordered_json* row(const std::string& key) const;
    [[nodiscard]] std::optional<double> figureOf(const std::string& key, const char* kind,
                                                 const std::string& figure) const;
    void readMicro(const std::filesystem::path& folder);

    nlohmann::ordered_json m_program;
    nlohmann::ordered_json m_fleet;
    nlohmann::ordered_json m_poll;
    nlohmann::ordered_json m_micro = nlohmann::ordered_json::array();
    std::vector<std::string> m_absences;
};

/// Whether a run of many hosts was beside a service with validators and kept connections.
[[nodiscard]] bool isUsual(const nlohmann::ordered_json& hosts);

} // namespace brimlet
