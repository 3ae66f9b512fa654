#pragma once

/// Which sanitizers this test program was built with.
namespace support {

/// ThreadSanitizer makes memory accesses up to a hundred times slower; AddressSanitizer delays the
/// reuse of freed memory. Both abort the program when an allocation fails.
#if defined(__SANITIZE_THREAD__)
inline constexpr bool kThreadSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
inline constexpr bool kThreadSanitizer = true;
#else
inline constexpr bool kThreadSanitizer = false;
#endif
#else
inline constexpr bool kThreadSanitizer = false;
#endif

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kAddressSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kAddressSanitizer = true;
#else
inline constexpr bool kAddressSanitizer = false;
#endif
#else
inline constexpr bool kAddressSanitizer = false;
#endif

inline constexpr bool kAnySanitizer = kThreadSanitizer || kAddressSanitizer;

}  // namespace support
