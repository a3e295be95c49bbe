#pragma once

#include <cstdint>

namespace brimlet {

/// How often this program has allocated memory so far, in libraries too.
[[nodiscard]] std::uint64_t allocationCount();

} // namespace brimlet
