#pragma once

/// Which sanitizers this test program was built with.
namespace support {

/// ThreadSanitizer makes memory accesses up to a hundred times slower; AddressSanitizer delays the
/// reuse of freed memory. Both abort the program when an allocation fails.
#if defined(__SANITIZE_THREAD__)
inline constexpr bool kThreadChecker = true;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
inline constexpr bool kThreadChecker = true;
#else
inline constexpr bool kThreadChecker = false;
#endif
#else
inline constexpr bool kThreadChecker = false;
#endif

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kAddressChecker = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kAddressChecker = true;
#else
inline constexpr bool kAddressChecker = false;
#endif
#else
inline constexpr bool kAddressChecker = false;
#endif

inline constexpr bool kAnyChecker = kThreadChecker || kAddressChecker;

}  // namespace support
