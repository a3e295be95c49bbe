#include "bench/allocations.h"

#include <atomic>
#include <cstddef>

namespace {

std::atomic<std::uint64_t> counted;

} // namespace

// The names under which the C library keeps its own allocator for programs that replace it.
extern "C" {
void* __libc_malloc(std::size_t size);                    // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);     // NOLINT(bugprone-reserved-identifier)

void* malloc(std::size_t size) {
    counted.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    counted.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    counted.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(memory, size);
}
}

namespace brimlet {

std::uint64_t allocationCount() {
    return counted.load(std::memory_order_relaxed);
}

} // namespace brimlet
