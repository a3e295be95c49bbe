#pragma once

#include "platform/url.h"

namespace brimlet {

/// The link rule: which addresses the program may open or fetch pictures from. Scheme exactly
/// "https"; or scheme exactly "http" with host exactly "127.0.0.1", "localhost" or "::1", so that
/// only a test service on this machine is reached unencrypted. Letter case counts.
[[nodiscard]] bool isAllowedLink(const Url& url);

} // namespace brimlet
