#include "platform/httpclient.h"

namespace brimlet {
namespace {

/// The explicit port, or else the scheme's default. Absent for an invalid port or another scheme.
std::optional<int> effectivePort(const Url& url) {
    if (url.port()) {
        bool isNumber = false;
        const int port = url.port()->toInt(&isNumber);
        return isNumber && port <= 65535 ? std::optional(port) : std::nullopt;
    }
    if (url.scheme()->compare(u"http", Qt::CaseInsensitive) == 0) {
        return 80;
    }
    if (url.scheme()->compare(u"https", Qt::CaseInsensitive) == 0) {
        return 443;
    }
    return std::nullopt;
}

} // namespace

bool isSameOrigin(const Url& from, const Url& to) {
    if (!from.scheme() || !to.scheme() || !from.host() || !to.host()) {
        return false;
    }
    const auto port = effectivePort(from);
    return port && port == effectivePort(to) &&
           from.scheme()->compare(*to.scheme(), Qt::CaseInsensitive) == 0 &&
           from.host()->compare(*to.host(), Qt::CaseInsensitive) == 0;
}

} // namespace brimlet
