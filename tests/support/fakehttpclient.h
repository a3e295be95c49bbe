#pragma once

#include "platform/deferred.h"
#include "platform/httpclient.h"
#include "tests/support/fakeclock.h"

#include <QMap>

#include <vector>

namespace brimlet {

/// A service without a network, with a behaviour for each path: it answers, lags, fails, or hangs
/// until the request's timeout on the fake clock. A request to another path waits for `resolve`.
class FakeHttpClient final : public HttpClient {
public:
    /// The clock must outlive the client.
    explicit FakeHttpClient(FakeClock& clock)
        : m_clock(clock) {}
    ~FakeHttpClient() override;
    FakeHttpClient(const FakeHttpClient&) = delete;
    FakeHttpClient& operator=(const FakeHttpClient&) = delete;

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

    /// From now on requests whose address ends with `path` get this after the lag.
    void answer(const QString& path, HttpResult result, std::chrono::milliseconds lag = {});
    void answer(const QString& path, int status, const QByteArray& body);
    /// From now on requests to the path are never answered.
    void hang(const QString& path);

    /// Ends the request at that index of `requests()`.
    void resolve(std::size_t index, HttpResult result);

    /// All requests so far, in the order sent.
    [[nodiscard]] const std::vector<HttpRequest>& requests() const { return m_requests; }
    /// Their paths with method, e.g. "GET /api/display".
    [[nodiscard]] QStringList log() const;
    void clear();

private:
    struct Behaviour {
        HttpResult result = HttpError::TimedOut;
        std::chrono::milliseconds lag{};
        bool hangs = false;
    };

    /// Applies the request's limits: no body for a status without one, TooLarge for a long body.
    [[nodiscard]] static HttpResult within(const HttpRequest& request, HttpResult result);
    [[nodiscard]] const Behaviour* behaviourOf(const Url& url) const;

    FakeClock& m_clock;
    QMap<QString, Behaviour> m_behaviours;
    std::vector<HttpRequest> m_requests;
    std::vector<Deferred<HttpResult>> m_outcomes;
    bool m_isClosing = false;
};

} // namespace brimlet
