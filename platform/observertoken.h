#pragma once

#include <cstdint>

namespace brimlet {

/// Identifies a registration. Not an owner: a registered block is called as long as the port
/// exists, whether or not the token is kept.
enum class ObserverToken : std::uint64_t {};

} // namespace brimlet
