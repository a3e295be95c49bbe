#pragma once

#include <cstdint>

namespace brimlet {

/// How often this program has asked for memory so far, whoever asked.
[[nodiscard]] std::uint64_t allocationCount();

} // namespace brimlet
