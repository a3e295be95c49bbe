#pragma once

#include "platform/curl/curlsockets.h"
#include "platform/curl/curltraffic.h"

#include <QByteArray>

#include <vector>

namespace brimlet {

class CurlTransfer;

/// What all hops of an engine use, whosever they are. Outlives them.
struct CurlTransferContext final {
    QByteArray moreAuthorities;
    CurlSockets sockets;
    CurlTraffic traffic;
    /// The hops of which something is to be done, so that nobody has to ask all of them.
    std::vector<CurlTransfer*> news;
};

} // namespace brimlet
