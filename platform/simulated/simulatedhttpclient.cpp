#include "platform/simulated/simulatedhttpclient.h"

#include <algorithm>

namespace brimlet {
namespace {

/// What a busy machine needs to answer itself.
constexpr std::chrono::milliseconds kLeast(250);

} // namespace

SimulatedHttpClient::~SimulatedHttpClient() {
    // A request that ends with it may lead to the next one, which then ends at once.
    const auto real = std::move(m_real);
}

QCoro::Task<HttpResult> SimulatedHttpClient::send(HttpRequest request) {
    if (!m_real) {
        co_return HttpError::Cancelled;
    }
    request.timeout =
        std::max(std::chrono::duration_cast<std::chrono::milliseconds>(request.timeout / m_speed),
                 std::min(request.timeout, kLeast));
    HttpResult result = co_await m_real->send(std::move(request));
    co_return result;
}

} // namespace brimlet
