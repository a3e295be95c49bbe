#include "tests/support/memoryuse.h"

#include <fstream>
#include <string>

namespace brimlet {
namespace {

qint64 statusLine(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(name)) {
            return std::stoll(line.substr(name.size())) * 1024;
        }
    }
    return 0;
}

} // namespace

qint64 memoryInUse() {
    return statusLine("VmRSS:");
}

qint64 memoryPeak() {
    return statusLine("VmHWM:");
}

bool forgetPeak() {
    std::ofstream file("/proc/self/clear_refs");
    file << '5';
    file.flush();
    return file.good();
}

bool isMemoryDistorted() {
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
