#include "bench/machinefacts.h"

#include <ctime>
#include <fstream>
#include <string_view>

#include <sys/utsname.h>
#include <unistd.h>

namespace brimlet {
namespace {

/// What stands behind a name in a file of "name: value" or "name=value" lines; the first, without
/// quotes.
std::string valueIn(const char* path, std::string_view name) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(name)) {
            continue;
        }
        const auto start = line.find_first_not_of(":=\" \t", name.size());
        if (start != std::string::npos) {
            return line.substr(start, line.find_last_not_of("\" ") + 1 - start);
        }
    }
    return {};
}

std::string today() {
    const std::time_t now = std::time(nullptr);
    std::string text(sizeof "2000-01-01", '\0');
    std::tm time{};
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d", ::gmtime_r(&now, &time)));
    return text;
}

} // namespace

std::map<std::string, std::string> machineFacts() {
    utsname system{};
    ::uname(&system);
    return {{"cpu", valueIn("/proc/cpuinfo", "model name")},
            {"cores", std::to_string(::sysconf(_SC_NPROCESSORS_ONLN))},
            {"memory", valueIn("/proc/meminfo", "MemTotal")},
            {"system", valueIn("/etc/os-release", "PRETTY_NAME")},
            {"kernel", system.release},
            {"date", today()}};
}

std::string qtVersionOf(pid_t program) {
    constexpr std::string_view kLibrary("/libQt6Core.so.");
    std::ifstream maps("/proc/" + std::to_string(program) + "/maps");
    for (std::string line; std::getline(maps, line);) {
        if (const auto found = line.find(kLibrary); found != std::string::npos) {
            return line.substr(found + kLibrary.size());
        }
    }
    return {};
}

} // namespace brimlet
