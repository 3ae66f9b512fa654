#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/RawAudio.h"

/// Audio files encoded and decoded by the ffmpeg and sox programs, to check our own code.
///
/// Threads: any one at a time.
namespace support {

/// Runs ffmpeg with these arguments after "-v error -nostdin -y". Returns its error output; empty
/// on success.
[[nodiscard]] std::string ffmpeg(const std::vector<std::string>& arguments);

/// The same for sox, without dither and without a guard against clipping.
[[nodiscard]] std::string sox(const std::vector<std::string>& arguments);

/// A file as ffmpeg decodes it, in the working format. `filter` is an audio filter; empty for none.
[[nodiscard]] Samples decodedByFfmpeg(const std::string& path, const std::string& filter = {});

/// A file as sox decodes it.
[[nodiscard]] Samples decodedBySox(const std::string& path);

/// A file of 16-bit samples as ffmpeg decodes it, interleaved.
[[nodiscard]] std::vector<std::int16_t> decoded16ByFfmpeg(const std::string& path);

/// noise() rounded to multiples of 1 / 32768, which are exact in 16 bits.
[[nodiscard]] Samples noise16(std::size_t frames, std::uint32_t seed);

/// All bytes of a file.
[[nodiscard]] std::string fileBytes(const std::string& path);
/// Creates or replaces a file; false on failure.
[[nodiscard]] bool writeBytes(const std::string& path, const std::string& bytes);

/// A WAV file in memory: `format` is 1 for integers, 3 for floats.
[[nodiscard]] std::string wavBytes(std::uint32_t rate, std::uint16_t channels, std::uint16_t bits,
                                   const std::string& data, std::uint16_t format = 1);

}  // namespace support
