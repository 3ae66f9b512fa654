#pragma once

#include <chrono>
#include <functional>

/// Waiting in tests: always for an observed condition, never for time to pass.
namespace support {

/// Longest wait of a test for something that usually takes milliseconds. Generous, since a busy
/// machine must not fail a test; only a defect uses it up.
inline constexpr std::chrono::seconds kPatience{60};

/// Polls `condition` until it holds; false when `patience` has passed first.
///
/// Threads: any; the condition is called on the caller's thread.
[[nodiscard]] bool eventually(const std::function<bool()>& condition,
                              std::chrono::milliseconds patience = kPatience);

}  // namespace support
