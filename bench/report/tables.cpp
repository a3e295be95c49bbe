#include "bench/report/tables.h"

#include "bench/report/targets.h"
#include "bench/report/text.h"

#include <algorithm>
#include <sstream>

namespace brimlet {
namespace {

using nlohmann::ordered_json;

/// A column and the figure in it.
struct Column final {
    const char* head;
    const char* figure;
};

std::string line(const std::vector<std::string>& cells) {
    std::string line = "|";
    for (const std::string& cell : cells) {
        line += ' ' + cell + " |";
    }
    return line + '\n';
}

/// With the first column to the left and the others to the right.
std::string head(const std::vector<std::string>& cells) {
    std::string rule = "|---|";
    for (std::size_t i = 1; i < cells.size(); ++i) {
        rule += "--:|";
    }
    return line(cells) + rule + '\n';
}

bool isOurs(const std::string& key) {
    return key.starts_with("brimlet.");
}

/// A start or the time to pixels, which have a table of their own.
bool isTime(const Findings& findings, const std::string& key) {
    return findings.median(key, "startMs") || findings.median(key, "replyToPixelsMs") ||
           key.ends_with(".start") || key.ends_with(".change");
}

std::vector<std::string> keysOf(const Findings& findings) {
    std::vector<std::string> keys;
    for (const ordered_json& row : findings.program()["rows"]) {
        keys.push_back(row.value("key", ""));
    }
    return keys;
}

std::string machineText(const Findings& findings) {
    const ordered_json& program = findings.program();
    const auto fact = [&](const char* name) {
        return program.value("machine", ordered_json::object()).value(name, "?");
    };
    return "Version " + program.value("version", "?") + ", " + fact("date") + ", on " +
           fact("cores") + " × " + fact("cpu") + ", " + fact("system") + ", kernel " +
           fact("kernel") + ", Qt " + fact("qt") + ".\n";
}

std::string targetTable(const Findings& findings) {
    std::string table = "\n## Targets\n\n" + head({"target", "at most", "value", "met"});
    for (const Target& target : targetsOf(findings)) {
        const auto isMet = target.isMet();
        table += line({target.what,
                       (target.isStrict ? "< " : "") + textOf(target.limit) + ' ' + target.unit,
                       textOf(target.value), isMet ? (*isMet ? "yes" : "**no**") : "not measured"});
    }
    return table;
}

std::string stateTable(const Findings& findings) {
    static constexpr Column kColumns[] = {{"PSS MiB", "pssMib"},
                                          {"USS MiB", "ussMib"},
                                          {"dirty MiB", "privateDirtyMib"},
                                          {"threads", "threads"},
                                          {"CPU ms/min", "cpuMsPerMinute"},
                                          {"voluntary switches/s", "voluntarySwitchesPerSecond"},
                                          {"involuntary/s", "involuntarySwitchesPerSecond"},
                                          {"paints/min", "paintsPerMinute"},
                                          {"X requests/min", "xRequestsPerMinute"},
                                          {"X KiB/min", "xKibPerMinute"},
                                          {"sent B/poll", "bytesSentPerPoll"},
                                          {"received B/poll", "bytesReceivedPerPoll"},
                                          {"connections", "pollConnections"}};
    std::vector<std::string> heads{""};
    for (const Column& column : kColumns) {
        heads.emplace_back(column.head);
    }
    std::string table = "\n## In every state\n\n" + head(heads);
    for (const std::string& key : keysOf(findings)) {
        if (!findings.median(key, "cpuMsPerMinute") || !findings.median(key, "paintsPerMinute")) {
            continue;
        }
        std::vector<std::string> cells{findings.nameOf(key)};
        for (const Column& column : kColumns) {
            cells.push_back(textOf(findings.median(key, column.figure)));
        }
        table += line(cells);
    }
    return table;
}

std::string comparisonTable(const Findings& findings) {
    std::string table =
        "\n## Beside others\n\nThe last two columns tell how many times as much Brimlet takes in "
        "the same state.\n\n" +
        head({"", "PSS MiB", "dirty MiB", "CPU ms/min", "switches/s", "connections", "PSS ratio",
              "CPU ratio"});
    const auto rowOf = [&](const std::string& key) {
        const auto of = [&](const char* figure) { return findings.median(key, figure); };
        const auto beside = [&](const char* figure) {
            return isOurs(key)
                       ? std::string()
                       : textOf(ratio(findings.median(counterpartOf(key), figure), of(figure)));
        };
        return line({findings.nameOf(key), textOf(of("pssMib")), textOf(of("privateDirtyMib")),
                     textOf(of("cpuMsPerMinute")), textOf(of("switchesPerSecond")),
                     textOf(of("pollConnections")), beside("pssMib"), beside("cpuMsPerMinute")});
    };
    for (const char* key : {"brimlet.rest", "brimlet.cycles", "brimlet.scrolling"}) {
        table += rowOf(key);
    }
    for (const std::string& key : keysOf(findings)) {
        if (!isOurs(key) && !isTime(findings, key)) {
            table += rowOf(key);
        }
    }
    return table;
}

std::string timeTable(const Findings& findings) {
    std::string table =
        "\n## Until something is seen\n\n" + head({"", "median ms", "worst ms", "median frames"});
    for (const std::string& key : keysOf(findings)) {
        if (isTime(findings, key)) {
            const char* const figure = key.ends_with(".start") ? "startMs" : "replyToPixelsMs";
            table += line({findings.nameOf(key), textOf(findings.median(key, figure)),
                           textOf(findings.greatest(key, figure)),
                           textOf(findings.median(key, "replyToPixelsFrames"))});
        }
    }
    return table;
}

std::string numberText(const ordered_json& object, const char* name) {
    const auto found = object.find(name);
    return textOf(found != object.end() && found->is_number() ? std::optional(found->get<double>())
                                                              : std::nullopt);
}

std::string fleetTable(const Findings& findings) {
    if (findings.fleet().empty()) {
        return {};
    }
    std::string table = "\n## Many hosts in one process\n\n" +
                        head({"hosts", "service", "requests/s", "CPU ms/poll", "KiB/host", "p50 ms",
                              "p90 ms", "p99 ms", "worst ms"});
    for (const ordered_json& hosts : findings.fleet()) {
        const ordered_json latency = hosts.value("latencyMs", ordered_json::object());
        table += line({std::to_string(hosts.value("hosts", 0)), hosts.value("service", ""),
                       numberText(hosts, "requestsPerSecond"), numberText(hosts, "cpuMsPerPoll"),
                       numberText(hosts, "kibPerHost"), numberText(latency, "p50"),
                       numberText(latency, "p90"), numberText(latency, "p99"),
                       numberText(latency, "max")});
    }
    return table;
}

std::string pollTable(const Findings& findings) {
    if (findings.poll().empty()) {
        return {};
    }
    std::string table = "\n## One poll\n\n" + head({"", "figure"});
    // Its keys tell what they are, at any depth.
    const ordered_json figures = findings.poll().flatten();
    for (const auto& [name, value] : figures.items()) {
        if (value.is_number()) {
            std::string words = name.substr(1);
            std::replace(words.begin(), words.end(), '/', ' ');
            table += line({'`' + words + '`', textOf(value.get<double>())});
        }
    }
    return table;
}

std::string microTable(const Findings& findings) {
    if (findings.micro().empty()) {
        return {};
    }
    std::string table = "\n## Single steps\n\n" + head({"", "CPU", "slowest ms", "allocations"});
    for (const ordered_json& benchmark : findings.micro()) {
        const bool isAggregate = benchmark.value("run_type", "") == "aggregate";
        if (isAggregate ? benchmark.value("aggregate_name", "") == "median"
                        : benchmark.value("repetitions", 1) <= 1) {
            table +=
                line({benchmark.value("run_name", benchmark.value("name", "")),
                      numberText(benchmark, "cpu_time") + ' ' + benchmark.value("time_unit", ""),
                      numberText(benchmark, "slowest ms"), numberText(benchmark, "allocations")});
        }
    }
    return table;
}

std::string absenceList(const Findings& findings) {
    if (findings.absences().empty()) {
        return {};
    }
    std::string list = "\n## Not measured\n\n";
    for (const std::string& absence : findings.absences()) {
        list += "- " + absence + '\n';
    }
    return list;
}

} // namespace

std::string counterpartOf(const std::string& key) {
    for (const char* state : {"cycles", "scrolling"}) {
        if (key.ends_with(state)) {
            return std::string("brimlet.") + state;
        }
    }
    return "brimlet.rest";
}

std::string markdownOf(const Findings& findings, const std::vector<Picture>& pictures) {
    std::string text = machineText(findings) + targetTable(findings) + stateTable(findings) +
                       comparisonTable(findings);
    for (const auto& [file, title] : pictures) {
        text += "\n![" + title + "](" + file + ")\n";
    }
    return text + timeTable(findings) + fleetTable(findings) + pollTable(findings) +
           microTable(findings) + absenceList(findings);
}

} // namespace brimlet
