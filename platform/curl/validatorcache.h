#pragma once

#include "platform/curl/validators.h"
#include "platform/httpclient.h"

#include <list>
#include <memory>

namespace brimlet {

/// The last replies to requests that may revalidate, so that an unchanged one costs the service a
/// 304 without a body. In memory only, eight at the most, each body 64 KiB at the most. Every
/// request goes out all the same: nothing here has an age.
class ValidatorCache final {
public:
    struct Kept final {
        Validators validators;
        QByteArray body;
    };
    /// What one request has to do with the cache.
    struct Lookup final {
        QByteArray key; ///< Empty when the reply is neither asked about nor kept.
        /// The reply that is asked about, held until the answer is there; null for none.
        std::shared_ptr<const Kept> kept;
    };

    [[nodiscard]] Lookup lookUp(const HttpRequest& request);
    /// The header that asks, or nothing.
    [[nodiscard]] static std::optional<HttpHeader> conditionalHeader(const Lookup& lookup);
    /// Learns from the outcome of the request, and makes the 304 to its question the kept reply.
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
