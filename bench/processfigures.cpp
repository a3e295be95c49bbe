#include "bench/processfigures.h"

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>

#include <ctime>
#include <unistd.h>

namespace brimlet {
namespace {

std::string folderOf(pid_t process) {
    return "/proc/" + std::to_string(process);
}

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

/// The process's own clock: nanoseconds, where the ticks of /proc are ten milliseconds each.
double cpuMilliseconds(pid_t process) {
    clockid_t clock = 0;
    timespec time{};
    if (::clock_getcpuclockid(process, &clock) != 0 || ::clock_gettime(clock, &time) != 0) {
        return 0;
    }
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// From a process's stat file, behind its name in parentheses: user and system ticks of its
/// awaited children are the 14th and 15th words.
double childrenMilliseconds(pid_t process) {
    std::ifstream file(folderOf(process) + "/stat");
    std::string text;
    std::getline(file, text);
    const auto end = text.rfind(')');
    if (end == std::string::npos) {
        return 0;
    }
    std::istringstream words(text.substr(end + 1));
    std::string skipped;
    for (int i = 0; i < 13; ++i) {
        words >> skipped;
    }
    double user = 0;
    double system = 0;
    words >> user >> system;
    return (user + system) * 1000.0 / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

} // namespace

ProcessFigures& ProcessFigures::operator+=(const ProcessFigures& other) {
    pssKib += other.pssKib;
    ussKib += other.ussKib;
    privateDirtyKib += other.privateDirtyKib;
    cpuMilliseconds += other.cpuMilliseconds;
    childrenMilliseconds += other.childrenMilliseconds;
    voluntary += other.voluntary;
    involuntary += other.involuntary;
    threads += other.threads;
    return *this;
}

ProcessFigures readProcessFigures(pid_t process) {
    const std::string folder = folderOf(process);
    ProcessFigures figures;
    const std::string memory = folder + "/smaps_rollup";
    figures.pssKib = sumOf(memory, {"Pss:"});
    figures.ussKib = sumOf(memory, {"Private_Clean:", "Private_Dirty:"});
    figures.privateDirtyKib = sumOf(memory, {"Private_Dirty:"});
    figures.cpuMilliseconds = cpuMilliseconds(process);
    figures.childrenMilliseconds = childrenMilliseconds(process);
    std::error_code gone;
    for (const auto& thread : std::filesystem::directory_iterator(folder + "/task", gone)) {
        const std::string status = thread.path().string() + "/status";
        ++figures.threads;
        figures.voluntary += sumOf(status, {"voluntary_ctxt_switches:"});
        figures.involuntary += sumOf(status, {"nonvoluntary_ctxt_switches:"});
    }
    return figures;
}

std::vector<pid_t> processTree(pid_t root) {
    std::vector<pid_t> tree{root};
    for (std::size_t i = 0; i < tree.size(); ++i) {
        std::error_code gone;
        const std::string tasks = folderOf(tree[i]) + "/task";
        for (const auto& thread : std::filesystem::directory_iterator(tasks, gone)) {
            std::ifstream children(thread.path() / "children");
            for (pid_t child = 0; children >> child;) {
                tree.push_back(child);
            }
        }
    }
    return tree;
}

ProcessFigures readProcessFigures(const std::vector<pid_t>& processes) {
    ProcessFigures sum;
    for (const pid_t process : processes) {
        sum += readProcessFigures(process);
    }
    return sum;
}

} // namespace brimlet
