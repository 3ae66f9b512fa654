#include "waveform/MagnitudeExtent.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

namespace {

/// Four floats in a register, with the compiler's elementwise operators.
using Lanes = float __attribute__((vector_size(16)));
using LaneBits = std::uint32_t __attribute__((vector_size(16)));

constexpr std::size_t kLanes = 4;
constexpr std::uint32_t kMagnitudeBits = 0x7FFFFFFF;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// The extent of each lane. Several run side by side, so that no step waits for the previous one.
struct LaneExtent {
  Lanes smallest = {1.0F, 1.0F, 1.0F, 1.0F};
  Lanes largest = {};

  void include(const float* samples) {
    Lanes value;
    std::memcpy(&value, samples, sizeof value);
    value = reinterpret_cast<Lanes>(reinterpret_cast<LaneBits>(value) & kMagnitudeBits);
    const auto isNumber = reinterpret_cast<LaneBits>(value <= kInfinity);
    value = reinterpret_cast<Lanes>(reinterpret_cast<LaneBits>(value) & isNumber);
    smallest = value < smallest ? value : smallest;
    largest = value > largest ? value : largest;
  }

  void include(const LaneExtent& other) {
    smallest = other.smallest < smallest ? other.smallest : smallest;
    largest = other.largest > largest ? other.largest : largest;
  }
};

float magnitude(float sample) {
  return std::isnan(sample) ? 0.0F : std::fabs(sample);
}

}  // namespace

MagnitudeExtent leftMagnitudeExtent(const float* samples, std::uint64_t indexLimit) {
  // Both channels go through the lanes and the right one is dropped at the end: cheaper than
  // picking every second float out of the vectors, and free of branches.
  constexpr std::size_t kStep = 4 * kLanes;
  LaneExtent first;
  LaneExtent second;
  LaneExtent third;
  LaneExtent fourth;
  std::uint64_t index = 0;
  for (; index + kStep <= indexLimit; index += kStep) {
    first.include(samples + index);
    second.include(samples + index + kLanes);
    third.include(samples + index + 2 * kLanes);
    fourth.include(samples + index + 3 * kLanes);
  }
  first.include(second);
  third.include(fourth);
  first.include(third);
  MagnitudeExtent extent;
  for (std::size_t lane = 0; lane < kLanes; lane += 2) {
    extent.include({.smallest = first.smallest[lane], .largest = first.largest[lane]});
  }
  for (; index < indexLimit; index += 2) {
    const float value = magnitude(samples[index]);
    extent.include({.smallest = value, .largest = value});
  }
  return extent;
}
