#pragma once

#include "bench/allocations.h"

#include <benchmark/benchmark.h>

namespace brimlet {

/// Adds allocations per round to a benchmark's figures, from here to the end of the scope.
class CountAllocations final {
public:
    explicit CountAllocations(benchmark::State& state)
        : m_state(state)
        , m_before(allocationCount()) {}
    ~CountAllocations() {
        m_state.counters["allocations"] = benchmark::Counter(
            static_cast<double>(allocationCount() - m_before), benchmark::Counter::kAvgIterations);
    }
    CountAllocations(const CountAllocations&) = delete;
    CountAllocations& operator=(const CountAllocations&) = delete;

private:
    benchmark::State& m_state;
    std::uint64_t m_before;
};

} // namespace brimlet
