#include "platform/simulated/simulatedhttpclient.h"

#include <algorithm>

namespace brimlet {
namespace {

/// What a busy machine needs to answer itself.
constexpr std::chrono::milliseconds kLeast(250);

} // namespace

QCoro::Task<HttpResult> SimulatedHttpClient::send(HttpRequest request) {
    request.timeout =
        std::max(std::chrono::duration_cast<std::chrono::milliseconds>(request.timeout / m_speed),
                 std::min(request.timeout, kLeast));
    return m_real.send(std::move(request));
}

} // namespace brimlet
