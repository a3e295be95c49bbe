#pragma once

#include "platform/url.h"

namespace brimlet {

/// The link rule: which addresses the program may open or fetch pictures from. True for the scheme
/// "https" with any host, and for "http" with the host "127.0.0.1", "localhost" or "::1", so that
/// only a test service on this machine is reached without encryption. Case-sensitive.
[[nodiscard]] bool isAllowedLink(const Url& url);

} // namespace brimlet
