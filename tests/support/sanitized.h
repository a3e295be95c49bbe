#pragma once

namespace brimlet {

/// True when the test was built with a sanitizer of memory or threads, and with it the programs it
/// starts. All takes several times as long there, and nothing else can be preloaded.
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
