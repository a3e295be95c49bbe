#pragma once

#include "platform/httpclient.h"

#include <memory>
#include <utility>

namespace brimlet {

/// An HTTP client for a simulated clock: it divides request timeouts by the clock's speed, but
/// makes none shorter than 0.25 s of real time. Timeouts that were shorter before stay unchanged.
class SimulatedHttpClient final : public HttpClient {
public:
    /// `speed` is 1 or more.
    SimulatedHttpClient(std::unique_ptr<HttpClient> real, double speed)
        : m_real(std::move(real))
        , m_speed(speed) {}
    ~SimulatedHttpClient() override;
    SimulatedHttpClient(const SimulatedHttpClient&) = delete;
    SimulatedHttpClient& operator=(const SimulatedHttpClient&) = delete;

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

private:
    std::unique_ptr<HttpClient> m_real; ///< Null during destruction.
    const double m_speed;
};

} // namespace brimlet
