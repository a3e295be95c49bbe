#pragma once

#include <cstdint>

namespace brimlet {

/// Identifies a registration. There is no way to unregister: the callback is called as long as the
/// port exists, so it must not refer to anything shorter-lived.
enum class ObserverToken : std::uint64_t {};

} // namespace brimlet
