#pragma once

#include "platform/httpclient.h"
#include "tools/fleet/latencies.h"

namespace brimlet::fleet {

/// How requests ended.
struct Tally final {
    qint64 sent = 0;
    qint64 ok = 0;         ///< A 200, or a 304 for a kept reply.
    qint64 refused = 0;    ///< Another status.
    qint64 unanswered = 0; ///< Without a reply.

    void note(const HttpResult& result);
};

/// The requests of all hosts since the first one's start.
struct Statistics final {
    Tally polls;
    Tally heartbeats;
    Latencies pollTimes;
    Latencies heartbeatTimes;
};

/// Passes requests to a client, and records how each ends and how long it took. Client and
/// statistics must outlive every request.
class CountingClient final : public HttpClient {
public:
    CountingClient(HttpClient& client, Statistics& statistics)
        : m_client(client)
        , m_statistics(statistics) {}

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

    /// How many requests of this client have ended.
    [[nodiscard]] int ended() const { return m_ended; }

private:
    HttpClient& m_client;
    Statistics& m_statistics;
    int m_ended = 0;
};

} // namespace brimlet::fleet
