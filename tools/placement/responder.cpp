#include "tools/placement/responder.h"

#include "tools/placement/applyrule.h"
#include "tools/placement/brandpages.h"
#include "tools/placement/brands.h"
#include "tools/placement/documentpage.h"
#include "tools/placement/jsonreader.h"
#include "tools/placement/openapidocument.h"
#include "tools/placement/paths.h"
#include "tools/placement/revalidation.h"

#include <algorithm>

namespace brimlet::placement {

using nlohmann::json;

namespace {

constexpr std::int64_t minutesOfAWeek = 10'080;

std::optional<Heartbeat> readHeartbeat(const json& body, std::string& error) {
    Heartbeat beat;
    JsonReader reader(body, "heartbeat: ");
    reader.required()
        .boolean("paused", beat.paused)
        .texts("slotsVisible", beat.slotsVisible)
        .integer("wakeMinutes", 0, minutesOfAWeek, beat.wakeMinutes)
        .text("appVersion", beat.appVersion)
        .boolean("fromApplications", beat.fromApplications);
    error = reader.error();
    return reader.failed() ? std::nullopt : std::optional(beat);
}

std::string_view allowedMethods(std::string_view path) {
    return path == heartbeatPath || path == agreePath ? "POST" : "GET, HEAD";
}

bool isAllowed(const Incoming& request) {
    return allowedMethods(request.path) == "POST"
               ? request.method == "POST"
               : request.method == "GET" || request.method == "HEAD";
}

json sampleCreatives() {
    json list = json::array();
    for (const Brand& brand : sampleBrands) {
        list.push_back({{"slotId", brand.slotId},
                        {"brandName", brand.title},
                        {"copy", brand.tagline},
                        {"assetUrl", "/assets/" + std::string(brand.name) + ".png"},
                        {"brandUrl", "/brands/" + std::string(brand.name)}});
    }
    return list;
}

} // namespace

Credential splitAuthorization(std::string_view value) {
    const std::size_t blank = std::min(value.find(' '), value.size());
    std::string_view secret = value.substr(blank);
    secret.remove_prefix(std::min(secret.find_first_not_of(' '), secret.size()));
    return {std::string(value.substr(0, blank)), std::string(secret)};
}

Reply errorReply(int status, const std::string& message) {
    Reply reply;
    reply.status = status;
    reply.body = toText({{"error", message}});
    return reply;
}

Responder::Responder(std::string root, std::map<std::string, std::string, std::less<>> pictures)
    : m_root(std::move(root))
    , m_pictures(std::move(pictures)) {
    setScenario({});
}

void Responder::setScenario(Scenario scenario) {
    m_scenario = std::move(scenario);
    m_model.setTerms(m_scenario.terms);
}

Answer Responder::answer(const Incoming& request, Instant now) {
    Answer answer;
    answer.reply = plainReply(request, now);
    const auto rule = m_scenario.endpoints.find(request.path);
    if (rule != m_scenario.endpoints.end()) {
        applyRule(rule->second, answer);
    }
    revalidate(request, answer);
    return answer;
}

bool Responder::knows(const std::optional<std::string>& authorization) const {
    const Credential credential = splitAuthorization(authorization.value_or(std::string{}));
    const std::vector<std::string>& tokens = m_scenario.tokens;
    return credential.scheme == "Bearer" &&
           std::find(tokens.begin(), tokens.end(), credential.secret) != tokens.end();
}

Reply Responder::plainReply(const Incoming& request, Instant now) {
    if (!isServed(request.path)) {
        return errorReply(404, "no such path");
    }
    if (!isAllowed(request)) {
        const std::string allowed(allowedMethods(request.path));
        Reply reply = errorReply(405, request.method + " is not allowed here, only " + allowed);
        reply.headers.emplace_back("Allow", allowed);
        return reply;
    }
    if (request.path == pagePath) {
        return {200, "text/html; charset=utf-8", {}, documentPage()};
    }
    if (request.path == documentPath) {
        return {200, "application/yaml", {}, std::string(openApiDocument())};
    }
    if (isAsset(request.path)) {
        return pictureReply(request.path);
    }
    if (isBrandPage(request.path)) {
        const auto page = brandPage(request.path.substr(brandsPrefix.size()));
        return page ? Reply{200, "text/html; charset=utf-8", {}, *page}
                    : errorReply(404, "no such brand");
    }
    Reply reply;
    if (request.path == displayPath) {
        reply.body = toText(placement());
    } else {
        reply = hostReply(request, now);
    }
    // Replies differ for each token and change at any time.
    reply.headers.emplace_back("Cache-Control", "private, no-cache");
    return reply;
}

Reply Responder::hostReply(const Incoming& request, Instant now) {
    if (!knows(request.authorization)) {
        Reply reply = errorReply(401, request.authorization ? "the host token is not known"
                                                            : "a host token is needed");
        reply.headers.emplace_back("WWW-Authenticate", "Bearer");
        return reply;
    }
    const std::string token = splitAuthorization(*request.authorization).secret;
    if (request.path != mePath) {
        std::string error;
        const auto body = parseJson(request.body, error);
        if (!body || !body->is_object()) {
            return errorReply(400, body ? "body: must be a JSON object" : "body: " + error);
        }
        if (request.path == agreePath) {
            m_model.agree(token, now);
        } else if (const auto beat = readHeartbeat(*body, error)) {
            m_model.heartbeat(token, *beat, now);
        } else {
            return errorReply(400, error);
        }
    }
    const HostFigures figures = m_model.figures(token, now);
    json object = placement();
    object["estimatedCents"] = figures.estimatedCents;
    object["pendingStipendCents"] = figures.pendingStipendCents;
    object["liveHostCount"] = figures.liveHostCount;
    object["liveDaysThisWeek"] = figures.liveDaysThisWeek;
    object["liveBucketsToday"] = figures.liveBucketsToday;
    object["liveBucketsNeeded"] = figures.liveBucketsNeeded;
    object["agreed"] = figures.agreed;
    object["fromApplications"] = figures.fromApplications;
    object["agreementText"] = m_scenario.agreementText;
    Reply reply;
    reply.body = toText(object);
    return reply;
}

Reply Responder::pictureReply(std::string_view path) const {
    path.remove_prefix(assetsPrefix.size());
    path.remove_suffix(assetsSuffix.size());
    const auto picture = m_pictures.find(path);
    if (picture == m_pictures.end()) {
        return errorReply(404, "no such picture");
    }
    return {200, "image/png", {{"Cache-Control", "max-age=3600"}}, picture->second};
}

json Responder::placement() const {
    json creatives = m_scenario.creatives.value_or(sampleCreatives());
    for (json& creative : creatives) {
        for (const char* key : {"assetUrl", "brandUrl"}) {
            const auto url = creative.find(key);
            if (url != creative.end() && url->get_ref<const std::string&>().starts_with('/')) {
                *url = m_root + url->get<std::string>();
            }
        }
    }
    return {{"weekStatus", m_scenario.weekStatus},
            {"forceHide", m_scenario.forceHide},
            {"creatives", std::move(creatives)}};
}

} // namespace brimlet::placement
