#pragma once

#include "platform/url.h"

#include <QByteArray>
#include <QCoroTask>

#include <chrono>
#include <functional>
#include <optional>
#include <variant>
#include <vector>

namespace brimlet {

/// Sent byte for byte, without conversion.
struct HttpHeader final {
    QByteArray name;  ///< ASCII, in any letter case.
    QByteArray value; ///< ASCII or UTF-8, without control characters but tabs. May be empty.

    bool operator==(const HttpHeader&) const = default;
};

/// Whether a redirect from one address to the next may be followed.
using RedirectRule = std::function<bool(const Url& from, const Url& to)>;

/// True when scheme, host and port are the same, ignoring letter case and an explicit default port.
[[nodiscard]] bool isSameOrigin(const Url& from, const Url& to);

/// One request. The client adds only these headers: Host, User-Agent "Brimlet/0.1.0",
/// Content-Length for a body, and a conditional header for `mayRevalidate`.
struct HttpRequest final {
    Url url;
    QByteArray method = "GET";
    /// A header with a control character, except a tab in its value, makes the request fail as
    /// BadRequest.
    std::vector<HttpHeader> headers{};
    std::optional<QByteArray> body{};
    /// At most three redirects are followed, each only if this returns true. A redirect that is not
    /// followed is itself the result.
    RedirectRule mayFollow = isSameOrigin;
    /// Replies with a status from 200 to this one have their body; in all others it is empty.
    int lastStatusWithBody = 200;
    /// Bytes. A longer body makes the request fail as TooLarge.
    qsizetype bodyLimit = qsizetype{1024} * 1024;
    /// From the start to the last byte, including redirects.
    std::chrono::milliseconds timeout = std::chrono::seconds(60);
    /// For a GET that is repeated: the client may keep the reply and send the next request with a
    /// condition. When the service confirms the kept reply with a 304, the result is the kept
    /// reply, a 200 with its body.
    bool mayRevalidate = false;
};

struct HttpReply final {
    int status = 0;
    QByteArray body;

    bool operator==(const HttpReply&) const = default;
};

/// Why no reply came.
enum class HttpError {
    BadRequest,  ///< The address cannot be fetched or a header cannot be sent.
    Unreachable, ///< No such host, refused, no route, or no valid TLS certificate.
    Broken,      ///< Cut off, or not HTTP.
    TooLarge,    ///< The head or the body exceeded its limit.
    TimedOut,
    Cancelled, ///< The client was destroyed.
};

using HttpResult = std::variant<HttpReply, HttpError>;

/// Fetches over HTTP/1.1 and keeps connections open between requests. Stores no cookies and no
/// passwords, and answers no request from a cache without asking the service. Main thread only; any
/// number of requests may be under way.
class HttpClient {
public:
    virtual ~HttpClient() = default;

    /// Starts the request before it returns. The task always completes, at the latest at the
    /// timeout, and reports every failure as an `HttpError`.
    [[nodiscard]] virtual QCoro::Task<HttpResult> send(HttpRequest request) = 0;
};

} // namespace brimlet
