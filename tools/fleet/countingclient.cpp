#include "tools/fleet/countingclient.h"

namespace brimlet::fleet {

void Tally::note(const HttpResult& result) {
    const auto* const reply = std::get_if<HttpReply>(&result);
    if (reply == nullptr) {
        ++unanswered;
    } else {
        ++(reply->status == 200 ? ok : refused);
    }
}

QCoro::Task<HttpResult> CountingClient::send(HttpRequest request) {
    using std::chrono::steady_clock;

    const bool isPoll = request.method == "GET";
    Tally& tally = isPoll ? m_statistics.polls : m_statistics.heartbeats;
    Latencies& times = isPoll ? m_statistics.pollTimes : m_statistics.heartbeatTimes;
    ++tally.sent;
    const auto start = steady_clock::now();
    HttpResult result = co_await m_client.send(std::move(request));
    const std::chrono::duration<double, std::milli> time = steady_clock::now() - start;
    times.add(time.count());
    tally.note(result);
    ++m_ended;
    co_return result;
}

} // namespace brimlet::fleet
