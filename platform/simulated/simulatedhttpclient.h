#pragma once

#include "platform/httpclient.h"

#include <memory>
#include <utility>

namespace brimlet {

/// A client whose requests run out of time so many times as fast as with the real one, but none
/// before a quarter of a second of real time.
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
    std::unique_ptr<HttpClient> m_real; ///< Null once this goes.
    const double m_speed;
};

} // namespace brimlet
