#include "tools/placement/jsonreader.h"

#include <algorithm>

namespace brimlet::placement {

using nlohmann::json;

namespace {

// Parses a text that is not valid JSON again to find the position of its error.
class PlaceOfError final : public nlohmann::json_sax<json> {
public:
    bool null() override { return true; }
    bool boolean(bool /*value*/) override { return true; }
    bool number_integer(number_integer_t /*value*/) override { return true; }
    bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
    bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
    bool string(string_t& /*value*/) override { return true; }
    bool binary(binary_t& /*value*/) override { return true; }
    bool start_object(std::size_t /*elements*/) override { return true; }
    bool key(string_t& /*value*/) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t /*elements*/) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t position, const std::string& /*token*/,
                     const json::exception& /*error*/) override {
        m_position = position;
        return false;
    }

    [[nodiscard]] std::size_t position() const { return m_position; }

private:
    std::size_t m_position = 0;
};

bool isWholeNumber(const json& value, std::int64_t lowest, std::int64_t highest) {
    if (value.is_number_unsigned()) {
        return value.get<std::uint64_t>() <= static_cast<std::uint64_t>(highest) &&
               value.get<std::int64_t>() >= lowest;
    }
    return value.is_number_integer() && value.get<std::int64_t>() >= lowest &&
           value.get<std::int64_t>() <= highest;
}

bool isArrayOfTexts(const json& value) {
    return value.is_array() && std::all_of(value.begin(), value.end(),
                                           [](const json& element) { return element.is_string(); });
}

} // namespace

std::string inQuotes(std::string_view name) {
    return "\"" + std::string(name) + "\"";
}

std::optional<json> parseJson(std::string_view text, std::string& error) {
    json value = json::parse(text, nullptr, false);
    if (!value.is_discarded()) {
        return value;
    }
    PlaceOfError place;
    json::sax_parse(text, &place);
    const std::size_t offset =
        std::min(text.size(), std::max<std::size_t>(place.position(), 1) - 1);
    const std::string_view before = text.substr(0, offset);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto column = offset - (before.rfind('\n') + 1) + 1;
    error = "not valid JSON at line " + std::to_string(line) + ", column " + std::to_string(column);
    return std::nullopt;
}

std::string toText(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

JsonReader::JsonReader(const json& value, std::string place)
    : m_value(value)
    , m_place(std::move(place)) {
    if (!m_value.is_object()) {
        fail("must be a JSON object");
    }
}

JsonReader& JsonReader::boolean(const char* key, bool& into) {
    if (const json* found = find(key, "true or false", std::mem_fn(&json::is_boolean))) {
        into = found->get<bool>();
    }
    return *this;
}

JsonReader& JsonReader::text(const char* key, std::string& into) {
    if (const json* found = find(key, "a string", std::mem_fn(&json::is_string))) {
        into = found->get<std::string>();
    }
    return *this;
}

JsonReader& JsonReader::texts(const char* key, std::vector<std::string>& into) {
    if (const json* found = find(key, "an array of strings", isArrayOfTexts)) {
        into = found->get<std::vector<std::string>>();
    }
    return *this;
}

JsonReader& JsonReader::integer(const char* key, std::int64_t lowest, std::int64_t highest,
                                std::int64_t& into) {
    const std::string kind =
        "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest);
    const auto fits = [=](const json& value) { return isWholeNumber(value, lowest, highest); };
    if (const json* found = find(key, kind.c_str(), fits)) {
        into = found->get<std::int64_t>();
    }
    return *this;
}

JsonReader& JsonReader::object(const char* key, const std::function<void(const json&)>& use) {
    if (const json* found = find(key, "a JSON object", std::mem_fn(&json::is_object))) {
        use(*found);
    }
    return *this;
}

JsonReader& JsonReader::any(const char* key, const std::function<void(const json&)>& use) {
    if (const json* found = find(key, "a value", [](const json&) { return true; })) {
        use(*found);
    }
    return *this;
}

JsonReader& JsonReader::required() {
    m_required = true;
    return *this;
}

JsonReader& JsonReader::nothingElse() {
    if (failed()) {
        return *this;
    }
    for (const auto& item : m_value.items()) {
        if (std::find(m_known.begin(), m_known.end(), item.key()) == m_known.end()) {
            fail("unknown key " + inQuotes(item.key()));
            break;
        }
    }
    return *this;
}

void JsonReader::fail(const std::string& message) {
    if (!failed()) {
        m_error = m_place + message;
    }
}

const json* JsonReader::find(const char* key, const char* kind,
                             const std::function<bool(const json&)>& fits) {
    m_known.emplace_back(key);
    if (failed()) {
        return nullptr;
    }
    const auto found = m_value.find(key);
    if (found == m_value.end()) {
        if (m_required) {
            fail("key " + inQuotes(key) + " is missing");
        }
        return nullptr;
    }
    if (!fits(*found)) {
        fail("key " + inQuotes(key) + " must be " + kind);
        return nullptr;
    }
    return &*found;
}

} // namespace brimlet::placement
