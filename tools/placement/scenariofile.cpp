#include "tools/placement/scenariofile.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace brimlet::placement {

namespace {

constexpr std::uintmax_t sizeLimit = 4U << 20U;

std::optional<std::string> contents(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) ||
        std::filesystem::file_size(path, error) > sizeLimit) {
        return std::nullopt;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace

ScenarioFile::ScenarioFile(std::string path)
    : m_path(std::move(path)) {}

ScenarioFile::Update ScenarioFile::reload() {
    std::optional<std::string> text = contents(m_path);
    if (m_isLoaded && text == m_text) {
        return {};
    }
    m_isLoaded = true;
    m_text = std::move(text);
    if (!m_text) {
        return {std::nullopt, "scenario " + m_path + ": cannot be read, or is larger than 4 MiB"};
    }
    ScenarioResult result = parseScenario(*m_text);
    if (const auto* error = std::get_if<std::string>(&result)) {
        return {std::nullopt, "scenario " + m_path + ": " + *error};
    }
    return {std::get<Scenario>(std::move(result)), {}};
}

} // namespace brimlet::placement
