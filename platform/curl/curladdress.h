#pragma once

#include "platform/curl/curlhandles.h"
#include "platform/url.h"

#include <QByteArray>

#include <optional>

namespace brimlet {

/// The address as libcurl's CURLU, without user name and password. Null unless it is http or https,
/// has a host, and libcurl's parser finds the same scheme, host and port in it as Url: otherwise
/// the rules could allow one server and libcurl connect to another.
[[nodiscard]] CurlUrl curlAddress(const Url& url);

/// The target of a redirect. `location` is the Location header's value as sent, absolute or
/// relative to `from`. Absent when it is no well-formed address.
[[nodiscard]] std::optional<Url> redirectTarget(const Url& from, const QByteArray& location);

/// True for the hosts 127.0.0.1, ::1 and localhost, for which no proxy is used.
[[nodiscard]] bool isLoopback(const Url& url);

} // namespace brimlet
