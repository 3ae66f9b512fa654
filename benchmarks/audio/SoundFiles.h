#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Sound files for benchmarks, made by the ffmpeg program in a temporary folder at the first use
/// and deleted at the program's end.
///
/// Threads: main. Real-time: not safe.
namespace benchmarks {

/// Runs ffmpeg, with one thread; false when it failed or is not there.
[[nodiscard]] bool ffmpeg(const std::vector<std::string>& arguments);

/// Copies a file byte for byte with the cp program; false when it failed.
[[nodiscard]] bool copyFile(const std::string& from, const std::string& to);

/// Pink noise, stereo, 44100 Hz: ten minutes, one and three hours as 16-bit WAV, one as raw floats,
/// ten minutes as MP3 and as AAC in MPEG-4, both of 192 kbit/s. Empty when it could not be made.
[[nodiscard]] const std::string& tenMinutesOfWav();
[[nodiscard]] const std::string& threeHoursOfWav();
[[nodiscard]] const std::string& hourOfWav();
[[nodiscard]] const std::string& hourOfRawFloats();
[[nodiscard]] const std::string& tenMinutesOfMp3();
[[nodiscard]] const std::string& tenMinutesOfM4a();

/// A path in the temporary folder.
[[nodiscard]] std::string scratchFile(const std::string& name);

/// Writes what the system holds back of a file to its disk; false when it cannot.
bool syncFile(const std::string& path);

}  // namespace benchmarks
