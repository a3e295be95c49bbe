#include "platform/curl/validatorcache.h"

#include <QCryptographicHash>

#include <algorithm>

namespace brimlet {
namespace {

constexpr std::size_t kMostEntries = 8;
constexpr qsizetype kLongestBody = qsizetype{64} * 1024;

/// Headers by which the caller asks under conditions of its own.
bool isCondition(const HttpHeader& header) {
    const auto names = {"If-None-Match",       "If-Modified-Since", "If-Match",
                        "If-Unmodified-Since", "If-Range",          "Range"};
    return std::any_of(names.begin(), names.end(), [&header](const char* name) {
        return header.name.compare(name, Qt::CaseInsensitive) == 0;
    });
}

/// The same only for the same address and the same headers, the token's among them: another token
/// never sees this one's reply. A hash, so that no token outlives its request in here.
QByteArray keyOf(const HttpRequest& request) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(request.url.absoluteString().toUtf8());
    for (const HttpHeader& header : request.headers) {
        // Neither holds a line break, or the request would not be sent.
        hash.addData('\n' + header.name + '\n' + header.value);
    }
    return hash.result();
}

} // namespace

ValidatorCache::Lookup ValidatorCache::lookUp(const HttpRequest& request) {
    const bool isAsked =
        request.mayRevalidate && request.method == "GET" && !request.body &&
        request.lastStatusWithBody >= 200 &&
        std::none_of(request.headers.cbegin(), request.headers.cend(), isCondition);
    if (!isAsked) {
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
    // No reply, and a service in trouble, say nothing about what was kept.
    if (lookup.key.isEmpty() || reply == nullptr || reply->status >= 500) {
        return result;
    }
    if (reply->status == 304) {
        if (!lookup.kept) {
            return result; // nobody asked
        }
        if (!validators.agreesWith(lookup.kept->validators)) {
            forget(lookup.key); // the next reply comes whole, and with a validator of its own
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
    kept->body.squeeze(); // the reply's own may have twice the room
    m_entries.push_front({key, std::move(kept)});
    if (m_entries.size() > kMostEntries) {
        m_entries.pop_back();
    }
}

void ValidatorCache::forget(const QByteArray& key) {
    std::erase_if(m_entries, [&key](const Entry& one) { return one.key == key; });
}

} // namespace brimlet
