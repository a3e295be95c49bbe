#include "platform/simulated/simulatedhttpclient.h"

#include <algorithm>

namespace brimlet {
namespace {

/// The time in which a busy machine can still answer a request from itself.
constexpr std::chrono::milliseconds kMinTimeout(250);

} // namespace

SimulatedHttpClient::~SimulatedHttpClient() {
    // Destroying the real client cancels its requests, which may make their callers send more. With
    // `m_real` null, those are cancelled at once.
    const auto real = std::move(m_real);
}

QCoro::Task<HttpResult> SimulatedHttpClient::send(HttpRequest request) {
    if (!m_real) {
        co_return HttpError::Cancelled;
    }
    request.timeout =
        std::max(std::chrono::duration_cast<std::chrono::milliseconds>(request.timeout / m_speed),
                 std::min(request.timeout, kMinTimeout));
    HttpResult result = co_await m_real->send(std::move(request));
    co_return result;
}

} // namespace brimlet
