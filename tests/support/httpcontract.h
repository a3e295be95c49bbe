#pragma once

#include "platform/httpclient.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace brimlet {

/// A client and the service it sends to, either of them real or a fake.
class HttpPeer {
public:
    virtual ~HttpPeer() = default;

    [[nodiscard]] virtual HttpClient& client() = 0;
    virtual void dropClient() = 0;
    [[nodiscard]] virtual Url url(const QString& path) const = 0;
    /// From now on requests to the path get this.
    virtual void answer(const QString& path, int status, const QByteArray& body) = 0;
    /// From now on requests to the path get a 200 with this. A peer with a real connection tags the
    /// reply, and answers a request that has the tag as its condition with a 304.
    virtual void answerTagged(const QString& path, const QByteArray& body) = 0;
    /// From now on requests to the path are never answered.
    virtual void hang(const QString& path) = 0;
    /// The requests that reached the service, in order, e.g. "GET /api/display".
    [[nodiscard]] virtual QStringList log() const = 0;
    /// Waits, or advances a fake clock.
    virtual void pass(std::chrono::milliseconds time) = 0;
};

/// A request that was started, and its outcome once there is one.
class Awaited final {
public:
    explicit Awaited(QCoro::Task<HttpResult>&& task);

    [[nodiscard]] bool isDone() const { return m_result->has_value(); }
    [[nodiscard]] HttpResult result() const { return m_result->value(); }

private:
    std::shared_ptr<std::optional<HttpResult>> m_result =
        std::make_shared<std::optional<HttpResult>>();
};

[[nodiscard]] HttpRequest requestTo(const Url& url, const QByteArray& method = "GET");

/// With the token "t0ken", which tests search for where it must not be, and a timeout of 5 seconds.
[[nodiscard]] HttpRequest authorised(const Url& url, const QByteArray& method = "GET");

/// Of a well-formed address in ASCII.
[[nodiscard]] Url urlOf(const char* text);

/// Sends, waits, and returns the outcome; absent when there is none after ten seconds.
[[nodiscard]] std::optional<HttpResult> fetch(HttpClient& client, HttpRequest request);

/// The contract of every implementation of the port, one row for each check: the data function of a
/// test and the test itself.
void addHttpContractRows();
void runHttpContractRow(HttpPeer& peer);

} // namespace brimlet
