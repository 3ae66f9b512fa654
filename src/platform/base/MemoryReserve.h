#pragma once

#include <cstddef>

namespace platform {

/// Memory that is held back for the moment in which there is no more: an allocation by `new` that
/// fails takes a piece of it, is tried again, and so succeeds. Otherwise one failure, wherever it
/// is, would end the program and what it records. Only when nothing is left, or for more at once
/// than the pieces have, std::bad_alloc is thrown as usual; what was given in vain is taken back.
///
/// The reserve takes part of the address space, but no memory, until it is given away: so it helps
/// where a process has a limit or the system promises no more than it has, not where the kernel
/// ends a process because it had promised too much.
///
/// Allocations by malloc, as Qt's and FFmpeg's are, are not helped.
///
/// One exists at a time. Threads: created and destroyed on main. Real-time: not safe.
class MemoryReserve {
 public:
  /// How many failures it survives before restore(), and the bytes that each gets.
  static constexpr std::size_t kPieces = 4;
  static constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

  MemoryReserve();
  ~MemoryReserve();
  MemoryReserve(const MemoryReserve&) = delete;
  MemoryReserve& operator=(const MemoryReserve&) = delete;

  /// How often a piece was given away in this program; grows.
  ///
  /// Threads: any. Real-time: safe.
  [[nodiscard]] static unsigned shortages() noexcept;

  /// Takes back what was given away. True if all of it is there, also without a reserve.
  ///
  /// Threads: any, while it exists. Real-time: not safe.
  static bool restore() noexcept;
};

}  // namespace platform
