#include "support/NumberedFrames.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace support {

namespace {

constexpr float kFullScale = 32768.0F;

float sampleOf(std::uint32_t half) {
  return static_cast<float>(static_cast<int>(half) - 32768) * (1.0F / kFullScale);
}

std::uint32_t halfOf(float sample) {
  return static_cast<std::uint32_t>(std::lround(sample * kFullScale) + 32768) & 0xFFFF;
}

}  // namespace

void makeNumbered(float* samples, std::uint64_t first, std::size_t frames) {
  const auto start = static_cast<std::uint32_t>(first);
  const auto count = static_cast<std::uint32_t>(frames);
  for (std::uint32_t i = 0; i < count; ++i) {  // 32 bits, so that the compiler makes vectors of it
    samples[std::size_t{2} * i] = sampleOf((start + i) & 0xFFFF);
    samples[std::size_t{2} * i + 1] = sampleOf((start + i) >> 16);
  }
}

std::uint64_t numberOf(const float* frame) {
  return halfOf(frame[0]) | std::uint64_t{halfOf(frame[1])} << 16;
}

std::size_t equalNumbered(const float* samples, std::uint64_t first, std::size_t frames) {
  constexpr std::size_t kBatch = 1024;
  std::array<float, 2 * kBatch> expected;
  for (std::size_t at = 0; at < frames;) {
    const std::size_t count = std::min(kBatch, frames - at);
    makeNumbered(expected.data(), first + at, count);
    const float* const batch = samples + 2 * at;
    if (std::memcmp(batch, expected.data(), 2 * count * sizeof(float)) != 0) {
      while (std::memcmp(samples + 2 * at, &expected[2 * (at % kBatch)], 2 * sizeof(float)) == 0) {
        ++at;
      }
      return at;
    }
    at += count;
  }
  return frames;
}

}  // namespace support
