#pragma once

#include <cstdint>

/// Lets exactly one allocation by `new` fail, as one for which there is no memory: the n-th that
/// this program's own code makes. The linker leads them here (CMakeLists.txt); those of libraries
/// are not among them.
///
/// Threads: begin() and end() on one; allocations may come from any.
namespace failing::allocations {

/// From now on allocations are counted, and that of this number, from 1 on, fails at its first try.
void begin(std::uint64_t number);
/// Nothing is counted or fails from now on, and what has failed was dealt with, on any thread.
void end();

/// Whether the chosen allocation came and failed.
[[nodiscard]] bool hasFailed();

}  // namespace failing::allocations
