#pragma once

// clang has it; g++, before 14, only a macro for each sanitizer.
#if !defined(__has_feature)
#define __has_feature(name) 0
#endif

/// Which sanitizers this test program was built with.
namespace support {

/// ThreadSanitizer makes memory accesses up to a hundred times slower; AddressSanitizer delays the
/// reuse of freed memory. Both abort the program when an allocation fails.
#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)
inline constexpr bool kThreadSanitizer = true;
#else
inline constexpr bool kThreadSanitizer = false;
#endif

#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
inline constexpr bool kAddressSanitizer = true;
#else
inline constexpr bool kAddressSanitizer = false;
#endif

inline constexpr bool kAnySanitizer = kThreadSanitizer || kAddressSanitizer;

}  // namespace support
