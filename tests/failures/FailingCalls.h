#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// Lets exactly one call of this program's own code fail: the n-th of those to the operating
/// system's files, to memory shared with the keeper, and to the sound device. The linker leads the
/// calls here (CMakeLists.txt); those of libraries are not among them.
///
/// Threads: begin() and end() on one; calls may come from any.
namespace failing {

/// From now on calls are counted, and that of this number, from 1 on, fails; 0 for none.
void begin(std::uint64_t number);
/// Nothing is counted or fails from now on. The number of calls since begin().
std::uint64_t end();

/// Whether the chosen call came and failed.
[[nodiscard]] bool hasFailed();
/// What failed, such as "pwrite"; empty for none.
[[nodiscard]] std::string failed();

/// Runs once on the thread of the call that fails, before it fails.
void whenFailing(std::function<void()> hook);

/// Counts a call; true if it is to fail.
[[nodiscard]] bool fails(const char* call);

}  // namespace failing
