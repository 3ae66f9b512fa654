#pragma once

#include <cstddef>
#include <cstdint>

/// Interleaved stereo frames that carry their own number: the left sample the lower 16 bits, the
/// right one the upper 16 bits, each as a sample that is exact in 16 bits. So every frame of a day
/// tells whether it was lost, repeated, moved or changed, and also from a saved file.
///
/// Threads: any.
namespace support {

/// Numbers begin anew after this many frames: 27 hours.
inline constexpr std::uint64_t kNumberedFrames = std::uint64_t{1} << 32;

/// Makes `frames` frames from number `first` on.
void makeNumbered(float* samples, std::uint64_t first, std::size_t frames);

/// The number that a frame carries. Meaningful for numbered frames only.
[[nodiscard]] std::uint64_t numberOf(const float* frame);

/// How many frames, from the beginning on, are those from number `first` on, bit for bit.
[[nodiscard]] std::size_t equalNumbered(const float* samples, std::uint64_t first,
                                        std::size_t frames);

}  // namespace support
