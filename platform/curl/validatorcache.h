#pragma once

#include "platform/curl/validators.h"
#include "platform/httpclient.h"

#include <list>
#include <memory>

namespace brimlet {

/// The last replies to requests that may revalidate. A conditional request then costs the service
/// only a 304 without a body while the reply is unchanged. In memory only; at most eight replies
/// with bodies of at most 64 KiB. Entries never expire, because every request is sent anyway.
class ValidatorCache final {
public:
    struct Kept final {
        Validators validators;
        QByteArray body;
    };
    /// What the cache has for one request.
    struct Lookup final {
        QByteArray key; ///< Empty when the cache must not be used for the request.
        /// The kept reply, null for none. It stays valid if the cache replaces it meanwhile.
        std::shared_ptr<const Kept> kept;
    };

    /// The key is empty unless the request allows revalidation, is a GET without a body and wants
    /// the body of a 200, and its headers hold no condition. A kept body beyond the request's limit
    /// is not used. A kept reply that is found becomes the most recently used.
    [[nodiscard]] Lookup lookUp(const HttpRequest& request);
    /// If-None-Match, or If-Modified-Since for a reply without an ETag; absent without a kept
    /// reply.
    [[nodiscard]] static std::optional<HttpHeader> conditionalHeader(const Lookup& lookup);
    /// Keeps or drops the reply according to the outcome of the request. Returns the kept reply as
    /// a 200 for a 304, else the outcome unchanged. `validators` are the reply's.
    [[nodiscard]] HttpResult applyReply(const Lookup& lookup, HttpResult result,
                                        const Validators& validators);

private:
    struct Entry final {
        QByteArray key;
        std::shared_ptr<const Kept> kept;
    };

    void keep(const QByteArray& key, const Validators& validators, const QByteArray& body);
    void forget(const QByteArray& key);

    std::list<Entry> m_entries; ///< The most recently used first.
};

} // namespace brimlet
