#pragma once

#include <bitset>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brimlet::placement {

/// A moment in UTC. The model never reads a clock: every call gets the time.
using Instant = std::chrono::sys_seconds;

/// What one heartbeat reports.
struct Heartbeat {
    bool paused = false;
    std::vector<std::string> slotsVisible;
    std::int64_t wakeMinutes = 0;
    std::string appVersion;
    bool fromApplications = false;
};

/// The terms of the weekly split.
struct Terms {
    /// Euro cents shared out in one week.
    std::int64_t poolCents = 250'000;
    /// Hosts counted beside the real ones: always live, on every day.
    std::int64_t simulatedHosts = 41;
};

/// One host's figures as a host reply carries them; money in euro cents.
struct HostFigures {
    std::int64_t estimatedCents = 0;
    std::int64_t pendingStipendCents = 0;
    std::int64_t liveHostCount = 0;
    std::int64_t liveDaysThisWeek = 0;
    std::int64_t liveBucketsToday = 0;
    std::int64_t liveBucketsNeeded = 0;
    bool agreed = false;
    bool fromApplications = true;

    bool operator==(const HostFigures&) const = default;
};

/// When each host was live, and its share of the week's pool. All days and weeks are UTC, weeks
/// begin on Monday. Not thread-safe; state lives in memory only.
class Model final {
public:
    static constexpr std::chrono::minutes windowLength{15};
    static constexpr std::int64_t windowsForLiveDay = 4;
    static constexpr std::chrono::minutes liveFor{30};

    /// Takes effect for the whole current week, its past days included.
    void setTerms(const Terms& terms) { m_terms = terms; }

    void heartbeat(const std::string& token, const Heartbeat& beat, Instant now);
    void agree(const std::string& token, Instant now);

    /// When `now` is in a later week, that week begins first, which banks every host's share.
    [[nodiscard]] HostFigures figures(const std::string& token, Instant now);

private:
    using Day = std::chrono::sys_days;
    using Windows = std::bitset<std::chrono::days{1} / windowLength>;

    struct Host {
        std::map<Day, Windows> week;
        std::optional<Instant> lastLive;
        std::int64_t bankedCents = 0;
        bool agreed = false;
        bool fromApplications = true;
    };

    void turnWeek(Instant now);
    [[nodiscard]] std::int64_t weekShare(const Host& host, Day today) const;
    [[nodiscard]] std::int64_t dayShare(const Host& host, Day day, Day today) const;
    [[nodiscard]] std::int64_t liveHosts(Instant now) const;

    Terms m_terms;
    std::optional<Day> m_weekStart;
    std::map<std::string, Host> m_hosts;
};

} // namespace brimlet::placement
