#pragma once

#include "platform/curl/validatorcache.h"

namespace brimlet {

/// What one client has to itself in an engine that it may share with others.
struct CurlClientState final {
    explicit CurlClientState(long ownScope)
        : scope(ownScope) {}

    /// libcurl uses a kept connection again only for the scope it was made with; no two tenants
    /// have the same. Its other meaning, the interface that leads to a link-local IPv6 address, is
    /// left alone by 0, the first client's.
    const long scope;
    ValidatorCache replies;
    qsizetype held = 0; ///< Bytes of bodies that are not yet handed over.
    bool isGone = false;
};

} // namespace brimlet
