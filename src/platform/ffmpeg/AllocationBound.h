#pragma once

#include <cstddef>
#include <cstdint>

/// The most that FFmpeg may allocate at a time, in bytes: a damaged length field can ask for any
/// amount. FFmpeg has one bound for the whole program, and other files may be open, so that it is
/// only ever raised.
///
/// Threads: any.
namespace platform {

/// Where the bound begins. Far more than a decoder needs.
inline constexpr std::size_t kSmallestAllocationBound = std::size_t{32} << 20;
/// Where it ends: the index of some 20 million packets, or five days of AAC.
inline constexpr std::size_t kLargestAllocationBound = std::size_t{512} << 20;

/// Enough for a sound file of so many bytes. FFmpeg's largest tables have an entry of 24 bytes for
/// each packet, which may be a single frame of 8-bit sound.
[[nodiscard]] std::size_t allocationBoundFor(std::uint64_t fileSize);

/// The bound is at least so many bytes from now on. Without a call, FFmpeg's own one holds, which
/// is larger than any here.
void allowAllocations(std::size_t bytes);

/// The bound of this moment; kSmallestAllocationBound before the first call of allowAllocations().
[[nodiscard]] std::size_t allocationBound();

}  // namespace platform
