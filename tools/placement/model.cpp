#include "tools/placement/model.h"

#include <algorithm>

namespace brimlet::placement {

namespace {

std::chrono::sys_days dayOf(Instant now) {
    return std::chrono::floor<std::chrono::days>(now);
}

std::chrono::sys_days mondayOf(std::chrono::sys_days day) {
    return day - (std::chrono::weekday{day} - std::chrono::Monday);
}

} // namespace

void Model::heartbeat(const std::string& token, const Heartbeat& beat, Instant now) {
    turnWeek(now);
    Host& host = m_hosts[token];
    host.fromApplications = beat.fromApplications;
    if (beat.paused || beat.slotsVisible.empty() || !beat.fromApplications) {
        return;
    }
    host.lastLive = now;
    const Day day = dayOf(now);
    host.week[day].set(static_cast<std::size_t>((now - day) / windowLength));
}

void Model::agree(const std::string& token, Instant now) {
    turnWeek(now);
    m_hosts[token].agreed = true;
}

HostFigures Model::figures(const std::string& token, Instant now) {
    turnWeek(now);
    const Host& host = m_hosts[token];
    const Day today = dayOf(now);
    HostFigures figures;
    figures.estimatedCents = weekShare(host, today);
    figures.pendingStipendCents = host.bankedCents;
    figures.liveHostCount = liveHosts(now);
    for (const auto& [day, windows] : host.week) {
        const auto count = static_cast<std::int64_t>(windows.count());
        figures.liveDaysThisWeek += count >= windowsForLiveDay ? 1 : 0;
        figures.liveBucketsToday = day == today ? count : figures.liveBucketsToday;
    }
    figures.liveBucketsNeeded = windowsForLiveDay;
    figures.agreed = host.agreed;
    figures.fromApplications = host.fromApplications;
    return figures;
}

// A clock that is set back does not change the week, so that nothing is banked twice.
void Model::turnWeek(Instant now) {
    const Day monday = mondayOf(dayOf(now));
    if (m_weekStart && monday > *m_weekStart) {
        const Day past = *m_weekStart + std::chrono::weeks{1};
        for (auto& [token, host] : m_hosts) {
            host.bankedCents += weekShare(host, past);
        }
        for (auto& [token, host] : m_hosts) {
            host.week.clear();
        }
    }
    m_weekStart = std::max(m_weekStart.value_or(monday), monday);
}

std::int64_t Model::weekShare(const Host& host, Day today) const {
    std::int64_t cents = 0;
    if (host.agreed) {
        for (const auto& [day, windows] : host.week) {
            cents += dayShare(host, day, today);
        }
    }
    return cents;
}

// Each day has a seventh of the pool. A past day's part is shared equally by the hosts that were
// live on it, today's by all hosts with at least one window; of today's, each window up to the
// fourth earns a quarter.
std::int64_t Model::dayShare(const Host& host, Day day, Day today) const {
    const auto windowsOn = [day](const Host& of) {
        const auto found = of.week.find(day);
        return found == of.week.end() ? 0 : static_cast<std::int64_t>(found->second.count());
    };
    const std::int64_t least = day == today ? 1 : windowsForLiveDay;
    const std::int64_t own = windowsOn(host);
    if (own < least) {
        return 0;
    }
    const auto sharing = std::count_if(m_hosts.begin(), m_hosts.end(), [&](const auto& entry) {
        return entry.second.agreed && windowsOn(entry.second) >= least;
    });
    const std::int64_t parts = 7 * windowsForLiveDay * (sharing + m_terms.simulatedHosts);
    return m_terms.poolCents * std::min(own, windowsForLiveDay) / parts;
}

std::int64_t Model::liveHosts(Instant now) const {
    const auto live = std::count_if(m_hosts.begin(), m_hosts.end(), [now](const auto& entry) {
        return entry.second.lastLive && now - *entry.second.lastLive <= liveFor;
    });
    return live + m_terms.simulatedHosts;
}

} // namespace brimlet::placement
