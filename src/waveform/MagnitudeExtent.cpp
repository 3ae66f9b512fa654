#include "waveform/MagnitudeExtent.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace {

/// Floats taken in one step; even, so that even lanes are even indexes.
constexpr std::size_t kLanes = 8;

float magnitude(float sample) {
  return std::isnan(sample) ? 0.0F : std::fabs(sample);
}

}  // namespace

MagnitudeExtent leftMagnitudeExtent(const float* samples, std::uint64_t indexLimit) {
  // Both channels go through the lanes and the right one is dropped at the end: cheaper than
  // picking every second float out of the vectors, and free of branches.
  std::array<float, kLanes> smallest;
  std::array<float, kLanes> largest;
  smallest.fill(1.0F);
  largest.fill(0.0F);
  std::uint64_t index = 0;
  for (; index + kLanes <= indexLimit; index += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const float value = magnitude(samples[index + lane]);
      smallest[lane] = value < smallest[lane] ? value : smallest[lane];
      largest[lane] = value > largest[lane] ? value : largest[lane];
    }
  }
  MagnitudeExtent extent;
  for (; index < indexLimit; index += 2) {
    const float value = magnitude(samples[index]);
    extent.include({.smallest = value, .largest = value});
  }
  for (std::size_t lane = 0; lane < kLanes; lane += 2) {
    extent.include({.smallest = smallest[lane], .largest = largest[lane]});
  }
  return extent;
}
