#include "tools/placement/revalidation.h"

#include "tools/placement/paths.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>

namespace brimlet::placement {

namespace {

/// A weak ETag from the body alone, so that it stays the same after a restart. Weak, since the
/// library may compress the body. FNV-1a is enough: a collision would harm only a test.
std::string tagOf(const std::string& body) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char byte : body) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    }
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "W/\"%016llx\"", static_cast<unsigned long long>(hash));
    return text.data();
}

bool isETag(const std::pair<std::string, std::string>& header) {
    constexpr std::string_view wanted("etag");
    return std::equal(header.first.begin(), header.first.end(), wanted.begin(), wanted.end(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == b; });
}

std::string_view withoutMark(std::string_view tag) {
    return tag.starts_with("W/") ? tag.substr(2) : tag;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(" \t"), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(" \t") + 1);
}

/// Whether the comma-separated list contains the tag. A tag with a comma, which only a scenario can
/// set, is never found; that only costs a whole reply.
bool names(std::string_view list, std::string_view tag) {
    if (trimmed(list) == "*") {
        return true;
    }
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        const std::string_view one = trimmed(list.substr(0, comma));
        if (!one.empty() && withoutMark(one) == withoutMark(tag)) {
            return true;
        }
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return false;
}

} // namespace

void revalidate(const Incoming& request, Answer& answer) {
    Reply& reply = answer.reply;
    if (!isEndpoint(request.path) || (request.method != "GET" && request.method != "HEAD") ||
        reply.status != 200 || answer.fault != Fault::None) {
        return;
    }
    auto tag = std::find_if(reply.headers.begin(), reply.headers.end(), isETag);
    if (tag == reply.headers.end()) {
        tag = reply.headers.insert(tag, {"ETag", tagOf(reply.body)});
    }
    if (names(request.ifNoneMatch, tag->second)) {
        reply.status = 304;
        // The length that the body would have; the library would send 0.
        reply.headers.emplace_back("Content-Length", std::to_string(reply.body.size()));
        reply.body.clear();
    }
}

} // namespace brimlet::placement
