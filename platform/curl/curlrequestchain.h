#pragma once

#include "platform/curl/curlclientstate.h"
#include "platform/curl/curlhandles.h"
#include "platform/deferred.h"
#include "platform/httpclient.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <memory>

namespace brimlet {

/// False when the method or a header cannot be sent unchanged, for instance because of a line
/// break.
[[nodiscard]] bool isSendable(const HttpRequest& request);

/// A request of a client and the redirects it follows, one transfer after another.
struct CurlRequestChain final {
    CurlRequestChain(HttpRequest firstRequest, std::shared_ptr<CurlClientState> sender)
        : request(std::move(firstRequest))
        , client(std::move(sender))
        , origin(request.url)
        , deadline(std::min<std::chrono::milliseconds>(request.timeout, std::chrono::hours(24))) {}

    /// Changes `request` to follow the redirect and returns its address. Null, and nothing changed,
    /// if the reply is not a redirect or may not be followed.
    [[nodiscard]] CurlUrl redirect(int status, const QByteArray& location);
    /// `request` with the conditional header of `lookup`, if there is one.
    [[nodiscard]] HttpRequest conditionalRequest() const;

    HttpRequest request; ///< The current one.
    std::shared_ptr<CurlClientState> client;
    /// Of the first address. Empty after a redirect, so the next request has no condition and its
    /// reply is not kept.
    ValidatorCache::Lookup lookup;
    Url origin; ///< The first address.
    QDeadlineTimer deadline;
    int redirectsLeft = 3;
    Deferred<HttpResult> outcome;
};

} // namespace brimlet
