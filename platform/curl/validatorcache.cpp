#include "platform/curl/validatorcache.h"

#include <QCryptographicHash>

#include <algorithm>

namespace brimlet {
namespace {

constexpr std::size_t kMostEntries = 8;
constexpr qsizetype kLongestBody = qsizetype{64} * 1024;

/// True for a header that already makes the request conditional, or asks for a part.
bool isCondition(const HttpHeader& header) {
    const auto names = {"If-None-Match",       "If-Modified-Since", "If-Match",
                        "If-Unmodified-Since", "If-Range",          "Range"};
    return std::any_of(names.begin(), names.end(), [&header](const char* name) {
        return header.name.compare(name, Qt::CaseInsensitive) == 0;
    });
}

/// A hash of the address and all headers, including the one with the token: a request with another
/// token never gets this reply, and the cache stores no token.
QByteArray keyOf(const HttpRequest& request) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(request.url.absoluteString().toUtf8());
    for (const HttpHeader& header : request.headers) {
        // No line break can occur inside, since such a request is not sent.
        hash.addData('\n' + header.name + '\n' + header.value);
    }
    return hash.result();
}

} // namespace

ValidatorCache::Lookup ValidatorCache::lookUp(const HttpRequest& request) {
    const bool isUsable =
        request.mayRevalidate && request.method == "GET" && !request.body &&
        request.lastStatusWithBody >= 200 &&
        std::none_of(request.headers.cbegin(), request.headers.cend(), isCondition);
    if (!isUsable) {
        return {};
    }
    Lookup lookup{.key = keyOf(request), .kept = nullptr};
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&lookup](const Entry& one) { return one.key == lookup.key; });
    if (entry != m_entries.end() && entry->kept->body.size() <= request.bodyLimit) {
        m_entries.splice(m_entries.begin(), m_entries, entry);
        lookup.kept = entry->kept;
    }
    return lookup;
}

std::optional<HttpHeader> ValidatorCache::conditionalHeader(const Lookup& lookup) {
    if (!lookup.kept) {
        return std::nullopt;
    }
    const Validators& validators = lookup.kept->validators;
    if (!validators.etag().isEmpty()) {
        return HttpHeader{"If-None-Match", validators.etag()};
    }
    return HttpHeader{"If-Modified-Since", validators.lastModified()};
}

HttpResult ValidatorCache::applyReply(const Lookup& lookup, HttpResult result,
                                      const Validators& validators) {
    const auto* const reply = std::get_if<HttpReply>(&result);
    // A failure or a server error does not show whether the kept reply is current.
    if (lookup.key.isEmpty() || reply == nullptr || reply->status >= 500) {
        return result;
    }
    if (reply->status == 304) {
        if (!lookup.kept) {
            return result; // the request was not conditional
        }
        if (!validators.agreesWith(lookup.kept->validators)) {
            forget(lookup.key); // the next request is answered whole, with its own validator
        }
        return HttpReply{200, lookup.kept->body};
    }
    if (reply->status == 200 && validators.mayKeep() && reply->body.size() <= kLongestBody) {
        keep(lookup.key, validators, reply->body);
    } else {
        forget(lookup.key);
    }
    return result;
}

void ValidatorCache::keep(const QByteArray& key, const Validators& validators,
                          const QByteArray& body) {
    forget(key);
    auto kept = std::make_shared<Kept>(Kept{validators, body});
    kept->body.squeeze(); // a received body may have up to twice the capacity
    m_entries.push_front({key, std::move(kept)});
    if (m_entries.size() > kMostEntries) {
        m_entries.pop_back();
    }
}

void ValidatorCache::forget(const QByteArray& key) {
    std::erase_if(m_entries, [&key](const Entry& one) { return one.key == key; });
}

} // namespace brimlet
