// Makes a report of what the benchmarks have left in a folder: report.json, report.md and one file
// for gnuplot for each picture in it.
//   bench-report FOLDER_WITH_RESULTS FOLDER_FOR_REPORT

#include "bench/report/findings.h"
#include "bench/report/plots.h"
#include "bench/report/tables.h"
#include "bench/report/targets.h"

#include <cstdio>
#include <fstream>

namespace {

using namespace brimlet;
using nlohmann::ordered_json;

ordered_json jsonOf(std::optional<double> number) {
    return number ? ordered_json(*number) : ordered_json();
}

ordered_json jsonOf(const Findings& findings) {
    ordered_json targets = ordered_json::array();
    for (const Target& target : targetsOf(findings)) {
        const auto isMet = target.isMet();
        targets.push_back({{"target", target.what},
                           {"limit", jsonOf(target.limit)},
                           {"strict", target.isStrict},
                           {"value", jsonOf(target.value)},
                           {"unit", target.unit},
                           {"met", isMet ? ordered_json(*isMet) : ordered_json()}});
    }
    ordered_json report = findings.program();
    report["targets"] = std::move(targets);
    report["fleet"] = findings.fleet();
    report["poll"] = findings.poll();
    report["steps"] = findings.micro();
    report["notMeasured"] = findings.absences();
    return report;
}

bool write(const std::filesystem::path& file, const std::string& text) {
    std::ofstream out(file);
    out << text;
    if (!out.flush()) {
        std::fprintf(stderr, "bench-report: %s cannot be written\n", file.c_str());
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 3) {
        std::fputs("usage: bench-report FOLDER_WITH_RESULTS FOLDER_FOR_REPORT\n", stderr);
        return 2;
    }
    try {
        const std::filesystem::path folder(argv[2]);
        std::filesystem::create_directories(folder);
        const Findings findings(argv[1]);
        const auto pictures = writePlots(findings, folder);
        const bool isWritten = write(folder / "report.json", jsonOf(findings).dump(2) + '\n') &&
                               write(folder / "report.md", markdownOf(findings, pictures));
        return isWritten ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench-report: %s\n", failure.what());
        return 1;
    }
}
