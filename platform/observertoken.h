#pragma once

#include <cstdint>

namespace brimlet {

/// Proof of a registration. It is a plain name, not an owner: dropping it unregisters nothing, and
/// a registered block is called for as long as the port lives.
enum class ObserverToken : std::uint64_t {};

} // namespace brimlet
