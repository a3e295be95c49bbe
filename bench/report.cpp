#include "bench/report.h"

#include <cstdio>

namespace brimlet {
namespace {

double mib(std::int64_t kib) {
    return static_cast<double>(kib) / 1024;
}

void printMemory(const std::optional<ProcessFigures>& memory) {
    if (memory) {
        std::printf(" %6.1f %6.1f %6.1f %4d", mib(memory->pssKib), mib(memory->ussKib),
                    mib(memory->privateDirtyKib), memory->threads);
    } else {
        std::printf(" %6s %6s %6s %4s", "", "", "", "");
    }
}

void printRates(const Rates& rates) {
    std::printf(" %8.0f %8.0f", rates.cpuMilliseconds, rates.wakeUps);
    if (rates.paints) {
        std::printf(" %7.0f %8.0f", *rates.paints, rates.pixelsPerPaint);
    } else {
        std::printf(" %7s %8s", "", "");
    }
}

} // namespace

void printHead() {
    std::printf("%-46s %6s %6s %6s %4s %8s %8s %7s %8s\n", "", "PSS", "USS", "dirty", "thr.",
                "CPU ms", "wake-ups", "paints", "pixels");
    std::printf("%-46s %6s %6s %6s %4s %8s %8s %7s %8s\n", "", "MiB", "MiB", "MiB", "", "a minute",
                "a minute", "a min.", "a paint");
    std::fflush(stdout);
}

Row printed(Row row) {
    std::printf("%-46s", row.name.c_str());
    if (row.memory || row.rates) {
        printMemory(row.memory);
    }
    if (row.rates) {
        printRates(*row.rates);
    }
    std::printf("%s%s\n", row.remark.empty() ? "" : "  ", row.remark.c_str());
    std::fflush(stdout);
    return row;
}

void printCpuRatio(const char* name, const Row& ours, const Row& other, const char* target) {
    if (ours.rates && other.rates && other.rates->cpuMilliseconds > 0) {
        std::printf("%-46s %.3f%s\n", name,
                    ours.rates->cpuMilliseconds / other.rates->cpuMilliseconds, target);
    }
}

} // namespace brimlet
