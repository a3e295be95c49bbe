#pragma once

#include "platform/httpclient.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace brimlet {

/// A client together with the service it talks to, of whatever kind both are.
class HttpPeer {
public:
    virtual ~HttpPeer() = default;

    [[nodiscard]] virtual HttpClient& client() = 0;
    virtual void dropClient() = 0;
    [[nodiscard]] virtual Url url(const QString& path) const = 0;
    /// From now on requests to the path get this.
    virtual void answer(const QString& path, int status, const QByteArray& body) = 0;
    /// From now on requests to the path get a 200 with this, or a 304 where they ask whether it
    /// still holds, if the peer has a wire to say so on.
    virtual void answerTagged(const QString& path, const QByteArray& body) = 0;
    /// From now on requests to the path are never answered.
    virtual void hang(const QString& path) = 0;
    /// What reached the service, in that order, e.g. "GET /api/display".
    [[nodiscard]] virtual QStringList log() const = 0;
    /// Lets time pass, really or not.
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

/// Sends, waits, and gives the outcome; absent when there is none after ten seconds.
[[nodiscard]] std::optional<HttpResult> fetch(HttpClient& client, HttpRequest request);

/// What every implementation of the port does alike.
struct HttpCheck final {
    const char* name;
    void (*run)(HttpPeer& peer);
};
[[nodiscard]] const std::vector<HttpCheck>& httpContract();

} // namespace brimlet
