#include "tests/support/testprogram.h"

#include <cstdio>
#include <map>

namespace brimlet {
namespace {

std::map<std::string_view, TestEntry::Function>& entries() {
    static std::map<std::string_view, TestEntry::Function> byName;
    return byName;
}

} // namespace

TestEntry::TestEntry(std::string_view name, Function function) {
    entries().emplace(name, function);
}

} // namespace brimlet

int main(int argc, char* argv[]) {
    const auto& entries = brimlet::entries();
    const auto entry = argc > 1 ? entries.find(argv[1]) : entries.end();
    if (entry == entries.end()) {
        std::fprintf(stderr, "usage: %s SUITE [QTEST_OPTION...]\nThe suites:\n", argv[0]);
        for (const auto& [name, function] : entries) {
            if (!name.starts_with("--")) {
                std::fprintf(stderr, "  %.*s\n", static_cast<int>(name.size()), name.data());
            }
        }
        return 2;
    }
    argv[1] = argv[0];
    return entry->second(argc - 1, argv + 1);
}
