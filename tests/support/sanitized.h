#pragma once

namespace brimlet {

/// True when the test, and the programs it starts, are built with the address or thread sanitizer.
/// They run several times as slowly, and no further library can be preloaded.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif
#else
inline constexpr bool kIsSanitized = false;
#endif

} // namespace brimlet
