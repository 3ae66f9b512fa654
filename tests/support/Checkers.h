#pragma once

/// Which of the checkers this test program was built with.
namespace support {

/// The thread checker makes every byte that is touched cost as much as a hundred; the address
/// checker keeps freed memory for a while. Both end the program where an allocation fails.
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
