#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "support/RawAudio.h"

/// A file as a real program writes it. It opens, gives all its sound and causes no alert.
struct GoodFile {
  static constexpr std::uint64_t kAsDecoded = std::numeric_limits<std::uint64_t>::max();

  /// What fileSizeInFrames() says before the first read.
  enum class Length { exact, estimated, unknown };
  enum class Sound { any, ofTheSource };

  std::string name;  ///< of the test
  std::string file;
  std::function<void(const std::string& path)> make;
  std::uint64_t frames = kFrames;  ///< delivered; kAsDecoded for as many as ffmpeg decodes
  Length length = Length::exact;
  Sound sound = Sound::any;

  static constexpr std::uint64_t kFrames = 20'001;  ///< of the source
};

std::ostream& operator<<(std::ostream& stream, const GoodFile& each);

/// 16-bit noise.
[[nodiscard]] const support::Samples& goodFileSource();

/// Uncompressed samples: what recorders and converters write, with the mistakes that they make.
[[nodiscard]] std::vector<GoodFile> goodPcmFiles();

/// MPEG-4, MP3 and AAC.
[[nodiscard]] std::vector<GoodFile> goodEncodedFiles();
