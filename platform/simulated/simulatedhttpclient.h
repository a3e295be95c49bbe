#pragma once

#include "platform/httpclient.h"

namespace brimlet {

/// A client whose requests run out of time so many times as fast as with the real one, which
/// outlives it; but none before a quarter of a second of real time.
class SimulatedHttpClient final : public HttpClient {
public:
    /// `speed` is 1 or more.
    SimulatedHttpClient(HttpClient& real, double speed)
        : m_real(real)
        , m_speed(speed) {}

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

private:
    HttpClient& m_real;
    const double m_speed;
};

} // namespace brimlet
