#include "tests/support/memoryuse.h"

#include "tests/support/emulated.h"

#include <fstream>
#include <string>

namespace brimlet {
namespace {

std::string folderOf(qint64 process) {
    return "/proc/" + (process == kThisProcess ? "self" : std::to_string(process));
}

qint64 statusLine(qint64 process, const std::string& name) {
    std::ifstream status(folderOf(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(name)) {
            return std::stoll(line.substr(name.size()));
        }
    }
    return 0;
}

} // namespace

qint64 memoryInUse(qint64 process) {
    return statusLine(process, "VmRSS:") * 1024;
}

qint64 memoryPeak(qint64 process) {
    return statusLine(process, "VmHWM:") * 1024;
}

int threadCount(qint64 process) {
    return static_cast<int>(statusLine(process, "Threads:"));
}

bool forgetPeak(qint64 process) {
    std::ofstream file(folderOf(process) + "/clear_refs");
    file << '5';
    file.flush();
    return file.good();
}

bool isMemoryDistorted() {
    if (emulated() == "processor") {
        return true;
    }
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find("libasan.so") != std::string::npos ||
            line.find("libtsan.so") != std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace brimlet
