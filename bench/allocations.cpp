#include "bench/allocations.h"

#include <atomic>
#include <cstddef>

namespace {

std::atomic<std::uint64_t> counted;

} // namespace

// The C library's own allocator under the name it keeps for those who stand in front of it.
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
