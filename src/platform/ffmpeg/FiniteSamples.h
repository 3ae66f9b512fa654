#pragma once

#include <cstddef>

/// Makes samples safe for converters and encoders. A single NaN would spread through a resampler's
/// filter to its neighbours and make an encoder fail.
///
/// Threads: any. Real-time: safe.
namespace platform {

/// Sets every infinite or NaN sample to 0. True if there was one. Doubles too large for a float
/// count as infinite.
bool makeFinite(float* samples, std::size_t count);
bool makeFinite(double* samples, std::size_t count);

/// Copies `count` samples, those that are not finite as 0, the rest limited to -1 to 1.
void copyFiniteLimited(const float* samples, std::size_t count, float* destination);

/// Copies `frames` frames of two interleaved channels into an array each, likewise.
void splitFiniteLimited(const float* interleaved, std::size_t frames, float* left, float* right);

}  // namespace platform
