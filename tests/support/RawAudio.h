#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The samples that tests play, record and compare: interleaved stereo (left, right), 32-bit float,
/// 44100 frames a second, in files without a header.
///
/// Threads: any.
namespace support {

inline constexpr std::size_t kFramesPerSecond = 44100;
inline constexpr std::size_t kChannels = 2;

using Samples = std::vector<float>;

/// Noise between -0.5 and 0.5 that never repeats, so that tests detect a lost, repeated or moved
/// frame. The channels differ. The same seed gives the same noise.
[[nodiscard]] Samples noise(std::size_t frames, std::uint32_t seed);

/// A tune that rises and falls like speech, at most 0.8.
[[nodiscard]] Samples tune(double seconds);

/// Writes the samples as they are in memory; false on failure.
[[nodiscard]] bool writeRaw(const std::string& path, const Samples& samples);

/// All whole frames of a file; empty if it cannot be read.
[[nodiscard]] Samples readRaw(const std::string& path);

/// Writes a 32-bit float WAV file; false on failure.
[[nodiscard]] bool writeWav(const std::string& path, const Samples& samples);

/// The frame of `in` where the first `probeFrames` frames of `part` occur, bit for bit.
[[nodiscard]] std::optional<std::size_t> findStart(const Samples& part, const Samples& in,
                                                   std::size_t probeFrames = 64);

/// Number of frames, from the start of `part`, that equal those of `in` from frame `start` on.
[[nodiscard]] std::size_t equalFrames(const Samples& part, const Samples& in, std::size_t start);

/// The frames with a sample other than 0. noise() consists of such frames, so this removes the
/// silence that a busy sound server inserts, while lost and repeated frames still show.
[[nodiscard]] Samples withoutSilence(const Samples& samples);

/// Largest magnitude of a sample.
[[nodiscard]] float peak(const Samples& samples);

}  // namespace support
