#pragma once

namespace platform {

/// Whether this is the thread that runs main().
///
/// Threads: any.
/// Real-time: safe.
[[nodiscard]] bool isMainThread();

/// Ends the program with the caller's name when this is another thread: for operations that only
/// the main thread may call. In release builds too: it compares two numbers, and what it prevents
/// is a data race that would otherwise show as damaged state much later, on a user's machine only.
///
/// Threads: any.
/// Real-time: safe.
void assertMainThread(const char* operation = __builtin_FUNCTION());

}  // namespace platform
