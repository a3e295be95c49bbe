#include "bench/processfigures.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace brimlet {
namespace {

/// The sum of the numbers behind these names in a file of "Name: number" lines.
std::int64_t sumOf(const std::string& path, std::initializer_list<std::string_view> names) {
    std::ifstream file(path);
    std::int64_t sum = 0;
    for (std::string line; std::getline(file, line);) {
        for (const std::string_view name : names) {
            if (line.starts_with(name)) {
                sum += std::stoll(line.substr(name.size()));
            }
        }
    }
    return sum;
}

double cpuMilliseconds(const std::string& folder) {
    std::ifstream file(folder + "/stat");
    std::string text;
    std::getline(file, text);
    // Behind the program's name, which is in parentheses: user and system ticks are the 12th and
    // 13th words.
    const auto end = text.rfind(')');
    if (end == std::string::npos) {
        return 0;
    }
    std::istringstream words(text.substr(end + 1));
    std::string skipped;
    for (int i = 0; i < 11; ++i) {
        words >> skipped;
    }
    double user = 0;
    double system = 0;
    words >> user >> system;
    return (user + system) * 1000.0 / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

} // namespace

ProcessFigures readProcessFigures(pid_t process) {
    const std::string folder = "/proc/" + std::to_string(process);
    ProcessFigures figures;
    const std::string memory = folder + "/smaps_rollup";
    figures.pssKib = sumOf(memory, {"Pss:"});
    figures.ussKib = sumOf(memory, {"Private_Clean:", "Private_Dirty:"});
    figures.privateDirtyKib = sumOf(memory, {"Private_Dirty:"});
    figures.cpuMilliseconds = cpuMilliseconds(folder);
    std::error_code gone;
    for (const auto& thread : std::filesystem::directory_iterator(folder + "/task", gone)) {
        ++figures.threads;
        figures.contextSwitches +=
            sumOf(thread.path().string() + "/status",
                  {"voluntary_ctxt_switches:", "nonvoluntary_ctxt_switches:"});
    }
    return figures;
}

} // namespace brimlet
