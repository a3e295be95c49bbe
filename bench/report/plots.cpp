#include "bench/report/plots.h"

#include "bench/report/text.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace brimlet {
namespace {

using nlohmann::ordered_json;

constexpr const char* kOurs = "#0b7285";
constexpr const char* kOthers = "#adb5bd";
constexpr const char* kFleetTitle = "Many hosts in one process";

/// One figure of some rows as bars.
struct BarPlot final {
    std::string name;
    std::string title;
    std::string figure;
    std::vector<std::string> keys;
};

struct Bar final {
    std::string label;
    double value = 0;
    bool isOurs = false;
};

std::vector<BarPlot> barPlots() {
    return {{"memory",
             "Memory at rest: PSS in MiB",
             "pssMib",
             {"brimlet.rest", "floor.rest", "libcurl", "polybar", "conky", "tint2", "qlipper",
              "flameshot", "copyq", "kdeconnect-indicator"}},
            {"cpu-at-rest",
             "CPU at rest: milliseconds a minute",
             "cpuMsPerMinute",
             {"brimlet.rest", "floor.rest", "libcurl", "polybar", "conky", "tint2", "qlipper",
              "flameshot", "copyq", "kdeconnect-indicator"}},
            {"cpu-scrolling",
             "CPU while text scrolls: milliseconds a minute",
             "cpuMsPerMinute",
             {"brimlet.scrolling", "floor.scrolling", "conky.scrolling", "conky.scrollingAlone",
              "naive.scrolling"}},
            {"switches",
             "Context switches a second, all threads",
             "switchesPerSecond",
             {"brimlet.rest", "brimlet.cycles", "brimlet.scrolling", "floor.rest",
              "floor.scrolling", "libcurl", "polybar", "conky", "tint2", "qlipper", "flameshot",
              "copyq", "kdeconnect-indicator"}}};
}

/// Text as gnuplot takes it between double quotes, with nothing that it would set otherwise.
std::string quoted(std::string text) {
    std::erase_if(text, [](char letter) { return letter == '"' || letter == '\\'; });
    return '"' + text + '"';
}

void writeHead(std::ostream& out, const std::string& name, const std::string& title, int height) {
    out << "set terminal svg size 760," << height
        << " font \"Inter,DejaVu Sans,sans-serif,13\" background \"#ffffff\" noenhanced\n"
        << "set output " << quoted(name + ".svg") << '\n'
        << "set label " << quoted(title) << " at screen 0.5, screen 1 offset 0,-1.2 center"
        << " font \",15\"\nset tmargin 2.6\n"
        << "set tics nomirror textcolor rgb \"#343a40\"\n";
}

/// Lying bars, the shortest on top, each with its value behind it.
void writeBars(std::ostream& out, const BarPlot& plot, const std::vector<Bar>& bars) {
    constexpr int kBar = 25;
    constexpr int kRest = 48;
    const double longest = std::max(bars.back().value, 1e-9);
    writeHead(out, plot.name, plot.title, kRest + kBar * static_cast<int>(bars.size()));
    out << "unset key\nset bmargin 0.6\nunset border\nunset xtics\nset ytics scale 0\nset style "
           "fill solid "
           "noborder\n"
        << "set xrange [0:" << longest * 1.12 << "]\nset yrange ["
        << static_cast<double>(bars.size()) - 0.5 << ":-0.5]\n"
        << "$bars << END\n";
    for (std::size_t i = 0; i < bars.size(); ++i) {
        out << i << ' ' << bars[i].value << ' ' << quoted(bars[i].label) << ' '
            << quoted(textOf(bars[i].value)) << ' ' << (bars[i].isOurs ? 1 : 0) << '\n';
    }
    out << "END\nplot ";
    for (const bool areOurs : {false, true}) {
        out << "$bars using ($5 == " << areOurs
            << " ? $2 / 2 : NaN):1:($2 / 2):(0.36):ytic(3) with boxxyerror linecolor rgb \""
            << (areOurs ? kOurs : kOthers) << "\", ";
    }
    out << "$bars using 2:1:4 with labels left offset 0.6,0 textcolor rgb \"#343a40\"\n";
}

bool writeBarPlot(const Findings& findings, const BarPlot& plot,
                  const std::filesystem::path& folder) {
    std::vector<Bar> bars;
    for (const std::string& key : plot.keys) {
        if (const auto value = findings.median(key, plot.figure)) {
            bars.push_back({findings.nameOf(key), *value, key.starts_with("brimlet.")});
        }
    }
    if (bars.size() < 2) {
        return false;
    }
    std::stable_sort(bars.begin(), bars.end(),
                     [](const Bar& left, const Bar& right) { return left.value < right.value; });
    std::ofstream out(folder / (plot.name + ".gp"));
    writeBars(out, plot, bars);
    return true;
}

/// What a poll and a host cost over the number of hosts: a flat line is what is hoped for.
bool writeFleetPlot(const Findings& findings, const std::filesystem::path& folder) {
    std::vector<ordered_json> numbers;
    for (const auto& hosts : findings.fleet()) {
        if (isUsual(hosts)) {
            numbers.push_back(hosts);
        }
    }
    if (numbers.size() < 2) {
        return false;
    }
    std::ofstream out(folder / "fleet.gp");
    writeHead(out, "fleet", kFleetTitle, 380);
    out << "set logscale x\nset xlabel \"hosts\"\nset ylabel \"CPU of a poll, ms\"\n"
        << "set y2label \"memory of a host, KiB\"\nset yrange [0:*]\nset y2range [0:*]\n"
        << "set y2tics\nset tmargin 5\nset key at graph 0.5, 1.08 center horizontal\nset grid "
           "ytics "
        << "linecolor rgb \"#e9ecef\"\nset border 11 linecolor rgb \"#868e96\"\n$fleet << END\n";
    for (const auto& hosts : numbers) {
        out << hosts.value("hosts", 0) << ' ' << hosts.value("cpuMsPerPoll", 0.0) << ' '
            << hosts.value("kibPerHost", 0.0) << '\n';
    }
    out << "END\nplot $fleet using 1:2 with linespoints pointtype 7 linewidth 2 linecolor rgb \""
        << kOurs << "\" title \"CPU of a poll\", $fleet using 1:3 axes x1y2 with linespoints "
        << "pointtype 5 linewidth 2 linecolor rgb \"#e8590c\" title \"memory of a host\"\n";
    return true;
}

} // namespace

std::vector<Picture> writePlots(const Findings& findings, const std::filesystem::path& folder) {
    std::vector<Picture> pictures;
    for (const BarPlot& plot : barPlots()) {
        if (writeBarPlot(findings, plot, folder)) {
            pictures.push_back({plot.name + ".svg", plot.title});
        }
    }
    if (writeFleetPlot(findings, folder)) {
        pictures.push_back({"fleet.svg", kFleetTitle});
    }
    return pictures;
}

} // namespace brimlet
