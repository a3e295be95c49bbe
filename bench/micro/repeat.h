#pragma once

#include "bench/allocations.h"

#include <benchmark/benchmark.h>

namespace brimlet {

/// Repeats a step until its time is steady, and adds the allocations of each to the figures.
template <typename Step>
void repeat(benchmark::State& state, const Step& step) {
    const std::uint64_t before = allocationCount();
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        step();
    }
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(allocationCount() - before), benchmark::Counter::kAvgIterations);
}

} // namespace brimlet
