#pragma once

#include "platform/curl/curltraffic.h"
#include "platform/curl/validatorcache.h"
#include "platform/deferred.h"

#include <list>

namespace brimlet {

/// What belongs to one client of an engine. The client and its requests hold it.
struct CurlClientState final {
    struct Outcome final {
        Deferred<HttpResult> deferred;
        HttpResult result;
    };

    explicit CurlClientState(long ownScope)
        : scope(ownScope) {}

    /// The CURLOPT_ADDRESS_SCOPE of its transfers, a different one for each client: libcurl reuses
    /// a connection only within the same scope. Otherwise the scope names the interface for a
    /// link-local IPv6 address. The first client has 0, libcurl's default, and can reach those.
    const long scope;
    ValidatorCache replies;
    CurlTraffic traffic;
    qsizetype bodyBytes = 0;     ///< Received for bodies that have not been handed over yet.
    std::list<Outcome> outcomes; ///< To be delivered in a later turn of the event loop.
    bool isGone = false;         ///< The client was destroyed; its requests end as Cancelled.
};

} // namespace brimlet
