#include "bench/figures.h"

#include <algorithm>
#include <cstddef>

namespace brimlet {
namespace {

double mib(std::int64_t kib) {
    return static_cast<double>(kib) / 1024;
}

/// Each figure that all runs have, made of its values.
template <typename Rule>
Figures overAll(const std::vector<Figures>& runs, const Rule& rule) {
    Figures figures;
    for (const auto& [name, first] : runs.front()) {
        std::vector<double> values;
        for (const Figures& run : runs) {
            if (const auto found = run.find(name); found != run.end()) {
                values.push_back(found->second);
            }
        }
        if (values.size() == runs.size()) {
            figures[name] = rule(std::move(values));
        }
    }
    return figures;
}

} // namespace

Traffic Traffic::operator-(const Traffic& earlier) const {
    return {.polls = polls - earlier.polls,
            .pollBytesSent = pollBytesSent - earlier.pollBytesSent,
            .pollBytesReceived = pollBytesReceived - earlier.pollBytesReceived,
            .pollConnections = pollConnections - earlier.pollConnections,
            .otherRequests = otherRequests - earlier.otherRequests};
}

Figures figuresOf(const Spent& spent) {
    const double minutes = spent.seconds / 60;
    const auto spentCpu = [](const ProcessFigures& figures) {
        return figures.cpuMilliseconds + figures.childrenMilliseconds;
    };
    const auto aSecond = [&](std::int64_t before, std::int64_t after) {
        return static_cast<double>(after - before) / spent.seconds;
    };
    const auto aMinute = [&](std::int64_t count) { return static_cast<double>(count) / minutes; };
    Figures figures{
        {"seconds", spent.seconds},
        {"pssMib", mib(spent.after.pssKib)},
        {"ussMib", mib(spent.after.ussKib)},
        {"privateDirtyMib", mib(spent.after.privateDirtyKib)},
        {"threads", spent.after.threads},
        {"cpuMsPerMinute", (spentCpu(spent.after) - spentCpu(spent.before)) / minutes},
        {"voluntarySwitchesPerSecond", aSecond(spent.before.voluntary, spent.after.voluntary)},
        {"involuntarySwitchesPerSecond",
         aSecond(spent.before.involuntary, spent.after.involuntary)},
        {"switchesPerSecond", aSecond(spent.before.voluntary + spent.before.involuntary,
                                      spent.after.voluntary + spent.after.involuntary)}};
    if (spent.paints) {
        figures["paintsPerMinute"] = aMinute(spent.paints->count);
    }
    if (spent.xRequests) {
        figures["xRequestsPerMinute"] = aMinute(spent.xRequests->count);
        figures["xKibPerMinute"] = aMinute(spent.xRequests->bytes) / 1024;
    }
    if (spent.traffic) {
        const auto aPoll = [&](std::int64_t bytes) {
            return static_cast<double>(bytes) / static_cast<double>(spent.traffic->polls);
        };
        figures["pollsPerMinute"] = aMinute(spent.traffic->polls);
        if (spent.traffic->polls > 0) {
            figures["bytesSentPerPoll"] = aPoll(spent.traffic->pollBytesSent);
            figures["bytesReceivedPerPoll"] = aPoll(spent.traffic->pollBytesReceived);
            // One that was opened earlier and kept is one too.
            figures["pollConnections"] =
                static_cast<double>(std::max<std::int64_t>(1, spent.traffic->pollConnections));
        }
    }
    return figures;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

Figures medianOf(const std::vector<Figures>& runs) {
    return overAll(runs, [](std::vector<double> values) { return median(std::move(values)); });
}

Figures greatestOf(const std::vector<Figures>& runs) {
    return overAll(runs, [](const std::vector<double>& values) {
        return *std::max_element(values.begin(), values.end());
    });
}

} // namespace brimlet
