#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

/// Test signals, interleaved stereo.
namespace support {

/// Frames numbered from `first`: left is the number, right its negative. Reveals torn, lost,
/// repeated and shifted frames.
inline std::vector<float> ramp(std::uint64_t first, std::size_t frames) {
  std::vector<float> samples(frames * 2);
  for (std::size_t i = 0; i < frames; ++i) {
    const auto number = static_cast<float>((first + i) % (1U << 24));  // a float holds it exactly
    samples[2 * i] = number;
    samples[2 * i + 1] = -number;
  }
  return samples;
}

/// Samples that are exact in 16 bits and differ in every frame and channel, and for every seed.
inline std::vector<float> ramp16(std::uint64_t frames, int seed = 0) {
  std::vector<float> samples(2 * frames);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const int value = static_cast<int>((i * 7 + static_cast<std::size_t>(seed)) % 60000) - 30000;
    samples[i] = static_cast<float>(value) / 32768.0F;
  }
  return samples;
}

/// Frames whose left sample is `left(frame)` and whose right sample is 0.75, loud enough that
/// mixing them up shows.
template <class Left>
std::vector<float> stereo(std::uint64_t frameCount, Left left) {
  std::vector<float> samples(frameCount * 2);
  for (std::uint64_t frame = 0; frame < frameCount; ++frame) {
    samples[frame * 2] = static_cast<float>(left(frame));
    samples[frame * 2 + 1] = 0.75F;
  }
  return samples;
}

inline std::vector<float> silence(std::uint64_t frameCount) {
  return std::vector<float>(frameCount * 2);
}

inline std::vector<float> sine(std::uint64_t frameCount, double amplitude, double framesPerPeriod) {
  return stereo(frameCount, [=](std::uint64_t frame) {
    return amplitude *
           std::sin(2.0 * std::numbers::pi * static_cast<double>(frame) / framesPerPeriod);
  });
}

/// Full scale, the sign changing every `halfPeriod` frames.
inline std::vector<float> squareWave(std::uint64_t frameCount, std::uint64_t halfPeriod) {
  return stereo(frameCount,
                [=](std::uint64_t frame) { return frame / halfPeriod % 2 == 0 ? 1.0 : -1.0; });
}

/// Blocks of 64 frames: one sample of the block's number / `blockCount`, then silence. The elements
/// rise, also after merging.
inline std::vector<float> risingBlocks(std::uint64_t firstBlock, std::uint64_t count,
                                       std::uint64_t blockCount) {
  return stereo(count * 64, [=](std::uint64_t frame) {
    const std::uint64_t number = firstBlock + frame / 64 + 1;
    return frame % 64 == 0 ? static_cast<double>(number) / static_cast<double>(blockCount) : 0.0;
  });
}

/// Noise with silent and loud stretches, samples beyond full scale, infinities and NaNs.
inline std::vector<float> roughNoise(std::uint64_t sampleCount, std::mt19937_64& random) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
  std::vector<float> samples(sampleCount);
  float level = 1.0F;
  for (float& sample : samples) {
    const std::uint64_t bits = random();
    if ((bits & 0x3FF) == 0) {
      level = static_cast<float>((bits >> 10) % 5) * 0.4F;
    }
    const float unit = static_cast<float>(bits >> 40) / 8388608.0F - 1.0F;
    sample = unit * level;
    const std::uint64_t rare = (bits >> 16) & 0xFFF;
    sample = rare == 0 ? kNoNumber : rare == 1 ? -kNoNumber : sample;
    sample = (bits >> 16 & 0xFFFF) == 2 ? -kInfinity : sample;
  }
  return samples;
}

}  // namespace support
