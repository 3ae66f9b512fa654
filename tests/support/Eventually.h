#pragma once

#include <chrono>
#include <functional>

/// Waiting in tests: always for something observed, never for time to pass.
namespace support {

/// How long a test waits at most for something that usually takes milliseconds. Generous, since a
/// busy machine must not fail a test; it is only used up when something is broken.
inline constexpr std::chrono::seconds kPatience{60};

/// Looks at `condition` again and again until it holds; false when `patience` ran out first.
///
/// Threads: any; the condition is called on the caller's thread.
[[nodiscard]] bool eventually(const std::function<bool()>& condition,
                              std::chrono::milliseconds patience = kPatience);

}  // namespace support
