#include "tools/placement/scenario.h"

#include "tools/placement/jsonreader.h"
#include "tools/placement/paths.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace brimlet::placement {

using nlohmann::json;

namespace {

constexpr std::array<std::pair<Fault, std::string_view>, 5> faultNames{{
    {Fault::None, "none"},
    {Fault::Hang, "hang"},
    {Fault::Close, "close"},
    {Fault::Cut, "cut"},
    {Fault::Garbage, "garbage"},
}};

// The service sets these itself; a second value would contradict its own.
bool isFraming(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return name == "content-length" || name == "transfer-encoding" || name == "connection";
}

bool isHeaderName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char letter) {
        return std::isalnum(letter) != 0 || letter == '-' || letter == '_';
    });
}

bool isHeaderValue(const std::string& value) {
    return std::none_of(value.begin(), value.end(),
                        [](unsigned char letter) { return letter < ' ' || letter == 0x7f; });
}

void readHeaders(const json& value, JsonReader& reader, EndpointRule& rule) {
    for (const auto& item : value.items()) {
        if (isFraming(item.key())) {
            reader.fail("header " + inQuotes(item.key()) + " is set by the service itself");
        } else if (!isHeaderName(item.key())) {
            reader.fail("header name " + inQuotes(item.key()) + " is not valid");
        } else if (!item.value().is_string() || !isHeaderValue(item.value().get<std::string>())) {
            reader.fail("header " + inQuotes(item.key()) +
                        " must be a string without control characters");
        } else {
            rule.headers.emplace_back(item.key(), item.value().get<std::string>());
        }
    }
}

void readFault(const json& value, JsonReader& reader, EndpointRule& rule) {
    const auto named = std::find_if(faultNames.begin() + 1, faultNames.end(), [&](const auto& row) {
        return value.is_string() && value.get<std::string>() == row.second;
    });
    if (named == faultNames.end()) {
        reader.fail(R"(key "fault" must be "hang", "close", "cut" or "garbage")");
    } else {
        rule.fault = named->first;
    }
}

void checkTogether(const json& value, const std::string& path, JsonReader& reader) {
    const bool alters = value.contains("merge") || value.contains("remove");
    const bool replaces = value.contains("body") || value.contains("text");
    if (value.contains("body") && value.contains("text")) {
        reader.fail(R"(give "body" or "text", not both)");
    } else if (alters && replaces) {
        reader.fail(R"("merge" and "remove" have no effect beside "body" or "text")");
    } else if (alters && !isEndpoint(path)) {
        reader.fail(R"("merge" and "remove" need a reply that is a JSON object)");
    } else if (value.value("fault", json()) == "garbage" &&
               (alters || replaces || value.contains("status"))) {
        reader.fail(R"(the fault "garbage" sets status and body itself)");
    }
}

void readRule(const std::string& path, const json& value, EndpointRule& rule, std::string& error) {
    JsonReader reader(value, "endpoint " + inQuotes(path) + ": ");
    std::int64_t status = 0;
    std::int64_t delay = 0;
    reader.object("merge", [&](const json& merge) { rule.merge = merge; })
        .texts("remove", rule.remove)
        .any("body", [&](const json& body) { rule.body = toText(body); })
        .any("text",
             [&](const json& text) {
                 if (text.is_string()) {
                     rule.body = text.get<std::string>();
                 } else {
                     reader.fail(R"(key "text" must be a string)");
                 }
             })
        .integer("status", 200, 599, status)
        .integer("delayMs", 0, 600'000, delay)
        .object("headers", [&](const json& headers) { readHeaders(headers, reader, rule); })
        .any("fault", [&](const json& fault) { readFault(fault, reader, rule); })
        .nothingElse();
    if (!reader.failed()) {
        checkTogether(value, path, reader);
    }
    if (status != 0) {
        rule.status = static_cast<int>(status);
    }
    rule.delay = std::chrono::milliseconds{delay};
    error = reader.error();
}

void readEndpoints(const json& value, JsonReader& reader, Scenario& scenario) {
    for (const auto& item : value.items()) {
        std::string error;
        if (!isServed(item.key())) {
            error = "endpoint " + inQuotes(item.key()) + " is not one of the service's paths";
        } else {
            readRule(item.key(), item.value(), scenario.endpoints[item.key()], error);
        }
        if (!error.empty()) {
            reader.fail(error);
            return;
        }
    }
}

void readCreatives(const json& value, JsonReader& reader, Scenario& scenario) {
    if (!value.is_array()) {
        reader.fail(R"(key "creatives" must be an array of objects)");
        return;
    }
    for (std::size_t index = 0; index < value.size(); ++index) {
        JsonReader creative(value[index], "creative " + std::to_string(index + 1) + ": ");
        std::string ignored;
        for (const char* key : {"slotId", "brandName", "copy", "tagline", "assetUrl", "brandUrl"}) {
            creative.text(key, ignored);
        }
        creative.nothingElse();
        if (creative.failed()) {
            reader.fail(creative.error());
            return;
        }
    }
    scenario.creatives = value;
}

} // namespace

std::string_view faultName(Fault fault) {
    return std::find_if(faultNames.begin(), faultNames.end(),
                        [fault](const auto& row) { return row.first == fault; })
        ->second;
}

ScenarioResult parseScenario(std::string_view text) {
    std::string error;
    const auto value = parseJson(text, error);
    if (!value) {
        return error;
    }
    Scenario scenario;
    JsonReader reader(*value, {});
    reader.texts("tokens", scenario.tokens)
        .text("agreementText", scenario.agreementText)
        .integer("poolCents", 0, 1'000'000'000'000, scenario.terms.poolCents)
        .integer("liveHosts", 0, 1'000'000, scenario.terms.simulatedHosts)
        .any("creatives", [&](const json& list) { readCreatives(list, reader, scenario); })
        .text("weekStatus", scenario.weekStatus)
        .boolean("forceHide", scenario.forceHide)
        .object("endpoints", [&](const json& rules) { readEndpoints(rules, reader, scenario); })
        .nothingElse();
    if (std::find(scenario.tokens.begin(), scenario.tokens.end(), "") != scenario.tokens.end()) {
        reader.fail(R"(key "tokens" must not hold an empty token)");
    }
    if (reader.failed()) {
        return reader.error();
    }
    return scenario;
}

} // namespace brimlet::placement
