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

struct HttpHeader final {
    QByteArray name;
    QByteArray value;

    bool operator==(const HttpHeader&) const = default;
};

/// Whether a redirect from one address to the next may be followed.
using RedirectRule = std::function<bool(const Url& from, const Url& to)>;

/// True when scheme, host and port are the same, letter case and a spelled-out default port aside.
[[nodiscard]] bool isSameOrigin(const Url& from, const Url& to);

/// One request. Nothing is sent besides what is named here, a Host, a User-Agent of
/// "Brimlet/0.1.0", with a body its Content-Length, and what `mayRevalidate` allows.
struct HttpRequest final {
    Url url;
    QByteArray method = "GET";
    /// A header holding a control character makes the whole request fail unsent.
    std::vector<HttpHeader> headers{};
    std::optional<QByteArray> body{};
    /// At most three hops are followed, each only if this allows it; a redirect that is not
    /// followed is the outcome itself.
    RedirectRule mayFollow = isSameOrigin;
    /// The body is handed over for the statuses from 200 up to this one, for others it is not read.
    int lastStatusWithBody = 200;
    /// Bytes. A longer body makes the request fail.
    qsizetype bodyLimit = qsizetype{1024} * 1024;
    /// From the start to the last byte, redirects included, however steadily bytes drip in.
    std::chrono::milliseconds timeout = std::chrono::seconds(60);
    /// For a GET that is sent again and again: the client may keep the reply and ask the service
    /// whether it still holds. One that does is the same outcome once more, a 200 with its body.
    bool mayRevalidate = false;
};

struct HttpReply final {
    int status = 0;
    QByteArray body;

    bool operator==(const HttpReply&) const = default;
};

/// Why no reply came.
enum class HttpError {
    BadRequest,  ///< Not a fetchable address or a header that cannot be sent; nothing was sent.
    Unreachable, ///< No such host, refused, no route, or no trustworthy TLS.
    Broken,      ///< Cut off, or not HTTP.
    TooLarge,    ///< The head or the body passed its limit.
    TimedOut,
    Cancelled, ///< The client went away.
};

using HttpResult = std::variant<HttpReply, HttpError>;

/// Fetches over HTTP/1.1, keeping connections open between requests. No cookies, no remembered
/// passwords, no reply that the service was not asked about. Main thread only; any number of
/// requests may be under way.
class HttpClient {
public:
    virtual ~HttpClient() = default;

    /// Starts at once. Always ends, at the latest with the request's timeout.
    [[nodiscard]] virtual QCoro::Task<HttpResult> send(HttpRequest request) = 0;
};

} // namespace brimlet
