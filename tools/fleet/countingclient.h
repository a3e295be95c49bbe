#pragma once

#include "platform/httpclient.h"
#include "tools/fleet/latencies.h"

namespace brimlet::fleet {

/// What became of requests.
struct Tally final {
    qint64 sent = 0;
    qint64 ok = 0;         ///< A 200, or a kept one that still holds.
    qint64 refused = 0;    ///< Another status.
    qint64 unanswered = 0; ///< No reply came.

    void note(const HttpResult& result);
};

/// What all hosts asked for since the first one's start.
struct Books final {
    Tally polls;
    Tally heartbeats;
    Latencies pollTimes;
    Latencies heartbeatTimes;
};

/// Hands requests on, and notes in the books how each ends and how long it took. Client and books
/// outlive every request.
class CountingClient final : public HttpClient {
public:
    CountingClient(HttpClient& client, Books& books)
        : m_client(client)
        , m_books(books) {}

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest request) override;

    /// How many of this one's requests have ended.
    [[nodiscard]] int ended() const { return m_ended; }

private:
    HttpClient& m_client;
    Books& m_books;
    int m_ended = 0;
};

} // namespace brimlet::fleet
