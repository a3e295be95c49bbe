#pragma once

#include "platform/curl/curlclientstate.h"
#include "platform/curl/curlhandles.h"
#include "platform/deferred.h"
#include "platform/httpclient.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <memory>

namespace brimlet {

/// False when the method or a header cannot be sent as it is without changing what is sent.
[[nodiscard]] bool isSendable(const HttpRequest& request);

/// A request on its way from transfer to transfer.
struct CurlRequestChain final {
    CurlRequestChain(HttpRequest asked, std::shared_ptr<CurlClientState> asking)
        : request(std::move(asked))
        , client(std::move(asking))
        , origin(request.url)
        , deadline(std::min<std::chrono::milliseconds>(request.timeout, std::chrono::hours(24))) {}

    /// Makes `request` the one that the redirect asks for, and tells its address. Null, with
    /// nothing changed, when the reply is no redirect or one that is not to be followed.
    [[nodiscard]] CurlUrl redirect(int status, const QByteArray& location);
    /// The request with the question that goes to its first address, if any.
    [[nodiscard]] HttpRequest currentRequest() const;

    HttpRequest request;
    std::shared_ptr<CurlClientState> client; ///< Who asks.
    /// Of the first address; elsewhere nothing is asked about, and nothing kept.
    ValidatorCache::Lookup lookup;
    Url origin;
    QDeadlineTimer deadline;
    int redirectsLeft = 3;
    Deferred<HttpResult> outcome;
};

} // namespace brimlet
