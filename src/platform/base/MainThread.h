#pragma once

namespace platform {

/// Whether this is the thread that runs main().
///
/// Threads: any.
/// Real-time: safe.
[[nodiscard]] bool isMainThread();

/// Aborts with the caller's name on any thread but the main one, for operations that only the main
/// thread may call. Active in release builds too: the check compares two numbers, and it prevents a
/// data race that would otherwise show up much later as damaged state.
///
/// Threads: any.
/// Real-time: safe.
void assertMainThread(const char* operation = __builtin_FUNCTION());

}  // namespace platform
