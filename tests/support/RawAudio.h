#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Samples as the tests play, record and compare them: interleaved stereo (left, right), 32-bit
/// float, 44100 frames a second, in files without a header.
///
/// Threads: any.
namespace support {

inline constexpr std::size_t kFramesPerSecond = 44100;
inline constexpr std::size_t kChannels = 2;

using Samples = std::vector<float>;

/// Noise between -0.5 and 0.5 in which no two neighbourhoods are alike, so that a lost, repeated
/// or moved frame cannot hide; both channels differ. The same for the same seed.
[[nodiscard]] Samples noise(std::size_t frames, std::uint32_t seed);

/// A tune with the rise and fall of speech, pleasant to look at and to hear, at most 0.8.
[[nodiscard]] Samples tune(double seconds);

/// Writes the samples as they lie in memory; false when it fails.
[[nodiscard]] bool writeRaw(const std::string& path, const Samples& samples);

/// All whole frames of a file; empty when it cannot be read.
[[nodiscard]] Samples readRaw(const std::string& path);

/// A 32-bit float WAV file; false when it fails.
[[nodiscard]] bool writeWav(const std::string& path, const Samples& samples);

/// Frame of `in` from which on it equals the first `probeFrames` frames of `part` bit for bit.
[[nodiscard]] std::optional<std::size_t> findStart(const Samples& part, const Samples& in,
                                                   std::size_t probeFrames = 64);

/// How many frames of `part` stand in `in` from frame `start` on without a difference.
[[nodiscard]] std::size_t equalFrames(const Samples& part, const Samples& in, std::size_t start);

/// The frames of which a sample is not 0. noise() has no other, so what a busy sound server put
/// between its frames, which is silence, is left out, and whatever it lost or repeated shows.
[[nodiscard]] Samples withoutSilence(const Samples& samples);

/// Largest magnitude of a sample.
[[nodiscard]] float peak(const Samples& samples);

}  // namespace support
