#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brimlet::placement {

/// A quoted name for messages.
[[nodiscard]] std::string inQuotes(std::string_view name);

/// Reads a JSON text; absent when it is not valid, with `error` saying at which line and column.
[[nodiscard]] std::optional<nlohmann::json> parseJson(std::string_view text, std::string& error);

/// The text of a JSON value; bytes that are not UTF-8 are replaced rather than refused.
[[nodiscard]] std::string toText(const nlohmann::json& value);

/// Reads the keys of one JSON object into variables, one call for each key. The first mistake is
/// kept and later calls do nothing, so callers check only once, at the end.
class JsonReader final {
public:
    /// `place` begins every message, for example `endpoint "/api/display": `; may be empty.
    JsonReader(const nlohmann::json& value, std::string place);

    JsonReader& boolean(const char* key, bool& into);
    JsonReader& text(const char* key, std::string& into);
    JsonReader& texts(const char* key, std::vector<std::string>& into);
    JsonReader& integer(const char* key, std::int64_t lowest, std::int64_t highest,
                        std::int64_t& into);
    JsonReader& object(const char* key, const std::function<void(const nlohmann::json&)>& use);
    JsonReader& any(const char* key, const std::function<void(const nlohmann::json&)>& use);

    /// Makes a missing key a mistake in later calls.
    JsonReader& required();
    /// Makes a key that no call named a mistake.
    JsonReader& nothingElse();
    void fail(const std::string& message);

    [[nodiscard]] bool failed() const { return !m_error.empty(); }
    [[nodiscard]] const std::string& error() const { return m_error; }

private:
    /// The key's value when it is present and of the kind `fits` accepts, else null.
    const nlohmann::json* find(const char* key, const char* kind,
                               const std::function<bool(const nlohmann::json&)>& fits);

    const nlohmann::json& m_value;
    std::string m_place;
    std::string m_error;
    std::vector<std::string> m_known;
    bool m_required = false;
};

} // namespace brimlet::placement
