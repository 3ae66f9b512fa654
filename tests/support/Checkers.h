#pragma once

namespace support {

/// Whether the thread checker runs, which makes every byte that is touched cost as much as a
/// hundred.
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

}  // namespace support
