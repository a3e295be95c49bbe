#pragma once

#include "platform/curl/curlhandles.h"
#include "platform/url.h"

#include <QByteArray>

#include <optional>

namespace brimlet {

/// The address as libcurl reads it, user info removed. Null unless it is http or https with a host
/// and libcurl reads the same scheme, host and port out of it as Url did: what was judged by one
/// parser is then what is fetched by the other.
[[nodiscard]] CurlUrl curlAddress(const Url& url);

/// Where a redirect leads: a Location header's value as sent, relative to the redirecting address.
[[nodiscard]] std::optional<Url> redirectTarget(const Url& from, const QByteArray& location);

/// True for the three spellings of this machine that are never reached through a proxy.
[[nodiscard]] bool isLoopback(const Url& url);

} // namespace brimlet
