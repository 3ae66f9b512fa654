#include "platform/ffmpeg/FiniteSamples.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace platform {
namespace {

// Long enough for the vector units, short enough to find a bad stretch quickly.
constexpr std::size_t kStretch = 64;

template <typename Sample>
bool isFinite(Sample sample) {
  return std::fabs(sample) <= static_cast<Sample>(std::numeric_limits<float>::max());
}

template <typename Sample>
bool hasOnlyFinite(const Sample* samples) {
  int finite = 0;
  for (std::size_t i = 0; i < kStretch; ++i) {
    finite += isFinite(samples[i]) ? 1 : 0;
  }
  return finite == static_cast<int>(kStretch);
}

template <typename Sample>
bool zeroInfinite(Sample* samples, std::size_t count) {
  bool found = false;
  for (std::size_t i = 0; i < count; ++i) {
    if (!isFinite(samples[i])) {
      samples[i] = 0;
      found = true;
    }
  }
  return found;
}

template <typename Sample>
bool makeFiniteInStretches(Sample* samples, std::size_t count) {
  bool found = false;
  std::size_t i = 0;
  for (; i + kStretch <= count; i += kStretch) {
    if (!hasOnlyFinite(samples + i)) {
      found = zeroInfinite(samples + i, kStretch) || found;
    }
  }
  return zeroInfinite(samples + i, count - i) || found;
}

float limited(float sample) {
  const float finite = isFinite(sample) ? sample : 0.0F;
  return std::min(std::max(finite, -1.0F), 1.0F);
}

}  // namespace

bool makeFinite(float* samples, std::size_t count) {
  return makeFiniteInStretches(samples, count);
}

bool makeFinite(double* samples, std::size_t count) {
  return makeFiniteInStretches(samples, count);
}

void copyFiniteLimited(const float* samples, std::size_t count, float* destination) {
  std::size_t i = 0;
  for (; i + kStretch <= count; i += kStretch) {
    for (std::size_t k = 0; k < kStretch; ++k) {
      destination[i + k] = limited(samples[i + k]);
    }
  }
  for (; i < count; ++i) {
    destination[i] = limited(samples[i]);
  }
}

void splitFiniteLimited(const float* interleaved, std::size_t frames, float* left, float* right) {
  for (std::size_t i = 0; i < frames; ++i) {
    left[i] = limited(interleaved[2 * i]);
    right[i] = limited(interleaved[2 * i + 1]);
  }
}

}  // namespace platform
