#pragma once

#include "platform/curl/curltraffic.h"
#include "platform/curl/validatorcache.h"
#include "platform/deferred.h"

#include <list>

namespace brimlet {

/// The state of one client of an engine, shared by the client and its requests.
struct CurlClientState final {
    struct Outcome final {
        Deferred<HttpResult> deferred;
        HttpResult result;
    };

    explicit CurlClientState(long ownScope)
        : scope(ownScope) {}

    /// The CURLOPT_ADDRESS_SCOPE of its transfers. libcurl reuses a connection only within one
    /// scope, so each client gets its own. The option is meant for the interface of link-local IPv6
    /// addresses; only the first client, with libcurl's default 0, can reach those.
    const long scope;
    ValidatorCache replies;
    CurlTraffic traffic;
    qsizetype bodyBytes = 0;     ///< Received for bodies that have not been handed over yet.
    std::list<Outcome> outcomes; ///< To be delivered in a later turn of the event loop.
    bool isGone = false;         ///< The client was destroyed; its requests end as Cancelled.
};

} // namespace brimlet
