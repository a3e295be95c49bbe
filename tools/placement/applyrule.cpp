#include "tools/placement/applyrule.h"

#include "tools/placement/jsonreader.h"

#include <algorithm>
#include <cctype>

namespace brimlet::placement {

using nlohmann::json;

namespace {

void changeKeys(const EndpointRule& rule, Reply& reply) {
    if (rule.merge.empty() && rule.remove.empty()) {
        return;
    }
    json body = json::parse(reply.body, nullptr, false);
    body.update(rule.merge);
    for (const std::string& key : rule.remove) {
        body.erase(key);
    }
    reply.body = toText(body);
}

void addHeaders(const EndpointRule& rule, Reply& reply) {
    for (const auto& [name, value] : rule.headers) {
        const auto sameName = [&wanted = name](const std::string& other) {
            return std::equal(wanted.begin(), wanted.end(), other.begin(), other.end(),
                              [](unsigned char a, unsigned char b) {
                                  return std::tolower(a) == std::tolower(b);
                              });
        };
        if (sameName("content-type")) {
            reply.contentType = value;
            continue;
        }
        std::erase_if(reply.headers, [&](const auto& header) { return sameName(header.first); });
        reply.headers.emplace_back(name, value);
    }
}

} // namespace

void applyRule(const EndpointRule& rule, Answer& answer) {
    Reply& reply = answer.reply;
    if (reply.status == 200) {
        changeKeys(rule, reply);
    }
    reply.body = rule.body.value_or(reply.body);
    reply.status = rule.status.value_or(reply.status);
    addHeaders(rule, reply);
    if (rule.fault == Fault::Garbage) {
        reply.status = 200;
        reply.body = "{\"weekStatus\": \"live\", \x01 this is not JSON";
    }
    if (reply.status == 204 || reply.status == 304) {
        reply.body.clear();
    }
    answer.delay = rule.delay;
    answer.fault = rule.fault;
}

} // namespace brimlet::placement
