#include "tools/placement/requestlog.h"

#include "tools/placement/jsonreader.h"

#include <cstdio>

namespace brimlet::placement {

using nlohmann::json;

namespace {

std::string isoTime(std::chrono::sys_time<std::chrono::milliseconds> time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{time - day};
    char text[64];
    std::snprintf(
        text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return text;
}

// Replaces the secrets in every part of a request, in case a client sent them in a wrong place.
class Redaction final {
public:
    Redaction(const Incoming& request, const std::vector<std::string>& knownTokens)
        : m_secrets(knownTokens) {
        const std::string sent =
            splitAuthorization(request.authorization.value_or(std::string{})).secret;
        // A shorter one is no secret and would occur by chance all over the line.
        if (sent.size() >= 4) {
            m_secrets.push_back(sent);
        }
    }

    [[nodiscard]] std::string operator()(std::string text) const {
        constexpr std::string_view mark = "[token]";
        for (const std::string& secret : m_secrets) {
            for (std::size_t at = text.find(secret); at != std::string::npos;
                 at = text.find(secret, at + mark.size())) {
                text.replace(at, secret.size(), mark);
            }
        }
        return text;
    }

private:
    std::vector<std::string> m_secrets;
};

json authorizationEntry(const std::optional<std::string>& authorization, bool known) {
    if (!authorization) {
        return nullptr;
    }
    // Any other scheme may be a part of the token, so it is not logged.
    const bool bearer = splitAuthorization(*authorization).scheme == "Bearer";
    return {{"scheme", bearer ? "Bearer" : "other"}, {"token", known ? "known" : "unknown"}};
}

} // namespace

std::string logLine(const Incoming& request, const LogFacts& facts,
                    const std::vector<std::string>& knownTokens) {
    const Redaction redacted(request, knownTokens);
    nlohmann::ordered_json line;
    line["time"] = isoTime(facts.time);
    line["method"] = redacted(request.method);
    line["path"] = redacted(request.path);
    if (!facts.query.empty()) {
        line["query"] = redacted(facts.query);
    }
    line["authorization"] = authorizationEntry(request.authorization, facts.tokenKnown);
    line["content_type"] = nullptr;
    line["user_agent"] = nullptr;
    line["headers"] = nlohmann::ordered_json::object();
    for (const auto& [name, value] : facts.headers) {
        const std::string shown = redacted(value);
        line["headers"][redacted(name)] = shown;
        if (name == "content-type") {
            line["content_type"] = shown;
        } else if (name == "user-agent") {
            line["user_agent"] = shown;
        }
    }
    line["body"] = redacted(request.body);
    line["status"] = nullptr;
    if (facts.status) {
        line["status"] = *facts.status;
    }
    line["fault"] = nullptr;
    if (facts.fault != Fault::None) {
        line["fault"] = faultName(facts.fault);
    }
    return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

bool RequestLog::open(const std::string& path) {
    m_file.open(path, std::ios::binary | std::ios::app);
    return m_file.is_open();
}

void RequestLog::append(const std::string& line) {
    if (m_file.is_open()) {
        m_file << line << '\n' << std::flush;
    }
}

} // namespace brimlet::placement
