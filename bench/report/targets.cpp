#include "bench/report/targets.h"

#include "bench/report/text.h"

#include <algorithm>

namespace brimlet {
namespace {

std::optional<double> greater(std::optional<double> one, std::optional<double> other) {
    return one && other ? std::optional(std::max(*one, *other)) : std::nullopt;
}

/// The greatest of a figure over all numbers of hosts, beside the usual service.
std::optional<double> greatestInFleet(const Findings& findings, const char* figure) {
    std::optional<double> greatest;
    for (const auto& hosts : findings.fleet()) {
        if (isUsual(hosts) && hosts.contains(figure) && hosts[figure].is_number()) {
            greatest = std::max(greatest.value_or(0), hosts[figure].get<double>());
        }
    }
    return greatest;
}

} // namespace

std::optional<bool> Target::isMet() const {
    if (!limit || !value) {
        return std::nullopt;
    }
    return isStrict ? *value < *limit : *value <= *limit;
}

std::vector<Target> targetsOf(const Findings& findings) {
    constexpr const char* kCpu = "cpuMsPerMinute";
    const auto of = [&](const char* key, const char* figure) {
        return findings.median(key, figure);
    };
    // At rest it is lowest: what was only needed to start is given back, what swaps need not yet
    // touched again.
    const auto pss = greater(of("brimlet.rest", "pssMib"), of("brimlet.cycles", "pssMib"));
    const auto cpuAtRest = of("brimlet.rest", kCpu);
    const auto scrolling = of("brimlet.scrolling", kCpu);
    const auto start = of("brimlet.start", "startMs");
    std::vector<Target> targets{{"PSS, the panel never opened", 18, pss, "MiB"}};
    for (const char* peer : {"qlipper", "flameshot", "kdeconnect-indicator", "copyq"}) {
        targets.push_back(
            {std::string("PSS, below that of ") + peer, of(peer, "pssMib"), pss, "MiB", true});
    }
    targets.insert(
        targets.end(),
        {{"CPU at rest", 12, cpuAtRest, "ms a minute"},
         {"CPU at rest beside the floor's", 4, ratio(cpuAtRest, of("floor.rest", kCpu)), "times"},
         {"CPU over whole cycles, both taglines scrolling", 120, of("brimlet.cycles", kCpu),
          "ms a minute"},
         {"context switches at rest, all threads", 1, of("brimlet.rest", "switchesPerSecond"),
          "a second"},
         {"CPU while both taglines scroll", 380, scrolling, "ms a minute"},
         {"CPU while both taglines scroll, below conky's", of("conky.scrolling", kCpu), scrolling,
          "ms a minute", true},
         {"paints while polls bring nothing new", 0, of("brimlet.rest", "paintsPerMinute"),
          "a minute"},
         {"X requests while polls bring nothing new", 0, of("brimlet.rest", "xRequestsPerMinute"),
          "a minute"},
         {"received for a poll that brings nothing new", 400,
          of("brimlet.rest", "bytesReceivedPerPoll"), "bytes"},
         {"connections for the polls of a cycle", 1,
          findings.greatest("brimlet.cycles", "pollConnections"), "in use"},
         {"start to first capsule", 100, start, "ms"},
         {"start beside that of an empty window", 1.5, ratio(start, of("empty.start", "startMs")),
          "times"},
         {"reply to pixels", 1, of("brimlet.change", "replyToPixelsFrames"), "frames of 1/60 s"},
         {"memory of a host among many", 40, greatestInFleet(findings, "kibPerHost"), "KiB"},
         {"CPU of a poll among many hosts", 0.3, greatestInFleet(findings, "cpuMsPerPoll"), "ms"}});
    return targets;
}

} // namespace brimlet
