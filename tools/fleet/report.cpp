#include "tools/fleet/report.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>

namespace brimlet::fleet {
namespace {

/// 0 when `of` is 0, so that a run without requests can be reported too.
double ratio(double what, double of) {
    return of > 0 ? what / of : 0;
}

/// The figures that are computed from others.
struct Derived final {
    explicit Derived(const Figures& figures)
        : perSecond(ratio(static_cast<double>(figures.requestsMade), figures.seconds))
        , cpuPerPoll(ratio(figures.cpuMilliseconds, static_cast<double>(figures.requestsMade)))
        , cpuPerHostMinute(ratio(figures.cpuMilliseconds * 60, figures.hosts * figures.seconds))
        , kibPerHost(ratio(figures.kib, figures.hosts))
        , heapKibPerHost(ratio(figures.heapKib, figures.hosts))
        , sentPerPoll(ratio(static_cast<double>(figures.bytesSent),
                            static_cast<double>(figures.requestsMade)))
        , receivedPerPoll(ratio(static_cast<double>(figures.bytesReceived),
                                static_cast<double>(figures.requestsMade))) {}

    double perSecond;
    double cpuPerPoll;
    double cpuPerHostMinute;
    double kibPerHost;
    double heapKibPerHost;
    double sentPerPoll;
    double receivedPerPoll;
};

std::string withDigits(double value, int digits) {
    std::string text(64, '\0');
    const int length = std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string row(const std::string& name, const std::string& value) {
    return "| " + name + " | " + value + " |\n";
}

std::string inMilliseconds(const Latencies::Summary& summary) {
    return withDigits(summary.p50, 2) + " / " + withDigits(summary.p90, 2) + " / " +
           withDigits(summary.p99, 2) + " / " + withDigits(summary.max, 2) + " ms";
}

double rounded(double value) {
    return std::round(value * 1000) / 1000;
}

nlohmann::ordered_json asObject(const Latencies::Summary& summary) {
    nlohmann::ordered_json object;
    object["p50"] = rounded(summary.p50);
    object["p90"] = rounded(summary.p90);
    object["p99"] = rounded(summary.p99);
    object["max"] = rounded(summary.max);
    return object;
}

} // namespace

std::string asTable(const Figures& figures) {
    const Derived derived(figures);
    const auto number = [](qint64 value) { return std::to_string(value); };
    return "| figure | value |\n|---|---|\n" + row("hosts", number(figures.hosts)) +
           row("measured", withDigits(figures.seconds, 1) + " s") +
           row("requests due / made",
               number(figures.requestsDue) + " / " + number(figures.requestsMade)) +
           row("requests a second", withDigits(derived.perSecond, 1)) +
           row("replies: whole / not modified / other status / none",
               number(figures.whole) + " / " + number(figures.notModified) + " / " +
                   number(figures.refused) + " / " + number(figures.unanswered)) +
           row("poll: p50 / p90 / p99 / max", inMilliseconds(figures.polls)) +
           row("heartbeat: p50 / p90 / p99 / max", inMilliseconds(figures.heartbeats)) +
           row("CPU a poll", withDigits(derived.cpuPerPoll, 3) + " ms") +
           row("CPU a host and minute", withDigits(derived.cpuPerHostMinute, 2) + " ms") +
           row("memory a host: private / of that heap", withDigits(derived.kibPerHost, 1) + " / " +
                                                            withDigits(derived.heapKibPerHost, 1) +
                                                            " KiB") +
           row("a poll: sent / received", withDigits(derived.sentPerPoll, 0) + " / " +
                                              withDigits(derived.receivedPerPoll, 0) + " bytes") +
           row("connections opened / open at the end",
               number(figures.connectionsOpened) + " / " + number(figures.connectionsOpen));
}

std::string asJson(const Figures& figures) {
    const Derived derived(figures);
    nlohmann::ordered_json object;
    object["hosts"] = figures.hosts;
    object["seconds"] = rounded(figures.seconds);
    object["requestsDue"] = figures.requestsDue;
    object["requestsMade"] = figures.requestsMade;
    object["requestsPerSecond"] = rounded(derived.perSecond);
    object["failed"] = figures.failed();
    object["notModified"] = figures.notModified;
    object["latencyMs"] = asObject(figures.polls);
    object["heartbeatLatencyMs"] = asObject(figures.heartbeats);
    object["cpuMsPerPoll"] = rounded(derived.cpuPerPoll);
    object["cpuMsPerHostMinute"] = rounded(derived.cpuPerHostMinute);
    object["kibPerHost"] = rounded(derived.kibPerHost);
    object["heapKibPerHost"] = rounded(derived.heapKibPerHost);
    object["bytesSentPerPoll"] = rounded(derived.sentPerPoll);
    object["bytesReceivedPerPoll"] = rounded(derived.receivedPerPoll);
    object["connectionsOpened"] = figures.connectionsOpened;
    object["connectionsOpen"] = figures.connectionsOpen;
    return object.dump();
}

} // namespace brimlet::fleet
