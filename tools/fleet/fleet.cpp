#include "tools/fleet/fleet.h"

#include "tools/fleet/cadence.h"

#include <algorithm>

namespace brimlet::fleet {
namespace {

using namespace std::chrono_literals;

/// How long the warm-up waits for a service that does not answer.
constexpr auto kWarmUpTimeout = 5s;
/// How long the hosts' first replies are waited for, from the last start, before the measurement
/// begins without them, and how often this is checked.
constexpr auto kFirstReplies = 10s;
constexpr auto kCheckInterval = 50ms;

/// How many hosts share a libcurl multi handle. A handle for each host would take 45 KiB; one for
/// all would be slow, since libcurl goes through all its connections at the end of each request.
constexpr std::size_t kHostsPerHandle = 32;

} // namespace

Fleet::Host::Host(Fleet& fleet, QByteArray token)
    : secrets(std::move(token))
    , http(fleet.nextClient())
    , counted(*http, fleet.m_statistics)
    , store(HostStore::create(
          {fleet.m_screens, fleet.m_workspace, secrets, counted, fleet.m_bundle, fleet.m_clock})) {}

Fleet::Fleet(Options options)
    : m_options(std::move(options))
    , m_bundle(m_options.root) {}

QCoro::Task<> Fleet::run() {
    const auto seconds = static_cast<double>(m_options.measured.count());
    const auto due = requestsDue(m_options.hosts, seconds, m_options.hasToken());
    const auto hosts = static_cast<std::size_t>(m_options.hosts);
    // Before memory is measured, and with room for late requests.
    m_statistics.pollTimes.prepare(static_cast<std::size_t>(due) + 2 * hosts);
    m_statistics.heartbeatTimes.prepare(2 * hosts);
    m_hosts.reserve(hosts);
    co_await warmUp();
    m_before = MemoryUse::now();
    co_await startAll();
    co_await awaitFirstReplies();
    m_statistics.pollTimes.clear();
    m_begin = mark();
    m_measured.start();
    co_await m_clock.sleep(m_options.measured, {});
}

/// Makes libraries initialise themselves before memory is measured.
QCoro::Task<> Fleet::warmUp() {
    CurlHttpClient client;
    const auto url = Url::fromString(m_options.root + QStringLiteral("/api/display"));
    if (!url) {
        co_return;
    }
    HttpRequest request{.url = *url};
    request.timeout = kWarmUpTimeout;
    [[maybe_unused]] const HttpResult result = co_await client.send(std::move(request));
}

QCoro::Task<> Fleet::startAll() {
    const auto begin = m_clock.uptime();
    for (int i = 0; i < m_options.hosts; ++i) {
        const auto rest =
            begin + startOffset(i, m_options.hosts, m_options.spread) - m_clock.uptime();
        if (rest.count() > 0) {
            co_await m_clock.sleep(rest, {});
        }
        m_hosts.push_back(std::make_unique<Host>(*this, m_options.tokenOf(i)));
        m_hosts.back()->store->startTimers();
    }
}

QCoro::Task<> Fleet::awaitFirstReplies() {
    // With a token a heartbeat follows the first display reply, and then the first poll with the
    // token.
    const int asked = m_options.hasToken() ? 3 : 1;
    const auto isReady = [asked](const auto& host) { return host->counted.ended() >= asked; };
    const auto end = m_clock.uptime() + kFirstReplies;
    while (!std::all_of(m_hosts.begin(), m_hosts.end(), isReady) && m_clock.uptime() < end) {
        co_await m_clock.sleep(kCheckInterval, {});
    }
}

std::unique_ptr<CurlHttpClient> Fleet::nextClient() const {
    const bool needsHandle = m_hosts.size() % kHostsPerHandle == 0;
    return needsHandle ? std::make_unique<CurlHttpClient>() : m_hosts.back()->http->makeSibling();
}

Fleet::Mark Fleet::mark() const {
    Mark mark{m_statistics.polls, m_statistics.heartbeats, {}, cpuMilliseconds()};
    for (const auto& host : m_hosts) {
        mark.traffic += host->http->traffic();
    }
    return mark;
}

Figures Fleet::figures() const {
    const Mark end = mark();
    const Mark& begin = m_measured.isValid() ? m_begin : end;
    Figures figures;
    figures.hosts = m_options.hosts;
    figures.seconds =
        m_measured.isValid() ? static_cast<double>(m_measured.nsecsElapsed()) / 1e9 : 0;
    figures.requestsDue = requestsDue(m_options.hosts, figures.seconds, m_options.hasToken());
    const auto since = [&](qint64 Tally::*count) {
        return end.polls.*count - begin.polls.*count + end.heartbeats.*count -
               begin.heartbeats.*count;
    };
    figures.requestsMade = since(&Tally::sent);
    figures.notModified = end.traffic.notModified - begin.traffic.notModified;
    // A 304 is counted when it arrives, its reply when it is delivered, one event-loop turn later.
    figures.whole = std::max<qint64>(since(&Tally::ok) - figures.notModified, 0);
    figures.refused = since(&Tally::refused);
    figures.unanswered = since(&Tally::unanswered);
    figures.polls = m_statistics.pollTimes.summary();
    figures.heartbeats = m_statistics.heartbeatTimes.summary();
    figures.cpuMilliseconds = end.cpu - begin.cpu;
    const MemoryUse memory = MemoryUse::now();
    figures.kib = memory.privateDirtyKib - m_before.privateDirtyKib;
    figures.heapKib = memory.heapKib - m_before.heapKib;
    figures.bytesSent = end.traffic.bytesSent - begin.traffic.bytesSent;
    figures.bytesReceived = end.traffic.bytesReceived - begin.traffic.bytesReceived;
    figures.connectionsOpened = end.traffic.connections;
    figures.connectionsOpen = openConnections();
    return figures;
}

bool Fleet::hasSucceeded() const {
    return m_statistics.polls.ok + m_statistics.heartbeats.ok > 0;
}

} // namespace brimlet::fleet
