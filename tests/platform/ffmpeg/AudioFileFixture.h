#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/base/ApplicationServices.h"
#include "platform/ffmpeg/AudioFileDemuxer.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FfmpegLog.h"
#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace platform {

/// One file in memory, for the classes below ExtAudioFileInput and ExtAudioFileOutput.
class AudioFileFixture : public testing::Test {
 protected:
  void SetUp() override {
    FfmpegLog::install(ConsoleLog);
    logScope_.emplace(log_);
  }

  /// A WAV of nonzero 16-bit stereo samples.
  static std::string wav(std::size_t frames, std::uint32_t rate = 44100) {
    return support::wavBytes(rate, 2, 16, std::string(frames * 4, 'x'));
  }

  /// `count` pseudo-random bytes, always the same.
  static std::string rubbish(std::size_t count) {
    std::string bytes(count, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes) {
      state = state * 1664525U + 1013904223U;
      byte = static_cast<char>(state >> 24);
    }
    return bytes;
  }

  /// A wav() whose header declares `bytes` bytes of samples.
  static std::string wavThatPromises(std::uint32_t bytes, std::size_t frames) {
    constexpr std::size_t kPlace = 40;
    std::string file = wav(frames);
    for (std::size_t i = 0; i < 4; ++i) {
      file[kPlace + i] = static_cast<char>((bytes >> (8 * i)) & 0xFFU);
    }
    return file;
  }

  /// `frames` frames of noise, encoded as the suffix says.
  static std::string encoded(const std::string& suffix, std::size_t frames,
                             const std::vector<std::string>& options = {}) {
    const support::TemporaryFolder folder;
    const std::string source = folder.file("source.wav");
    EXPECT_TRUE(support::writeWav(source, support::noise(frames, 1)));
    return madeBy({"-i", source}, suffix, options);
  }

  /// A file that ffmpeg makes from `input`.
  static std::string madeBy(std::vector<std::string> input, const std::string& suffix,
                            const std::vector<std::string>& options) {
    const support::TemporaryFolder folder;
    const std::string file = folder.file("a." + suffix);
    input.insert(input.end(), options.begin(), options.end());
    input.push_back(file);
    EXPECT_EQ(support::ffmpeg(input), "");
    return support::fileBytes(file);
  }

  /// Sets the file's content: these bytes, then zeros up to `size`.
  void put(const std::string& bytes, std::uint64_t size = 0) {
    storage_.setBytes(bytes, size);
    file_ = *storage_.openForReading("a");
    size_ = storage_.size();
  }

  std::unique_ptr<AudioFileDemuxer> demux(const std::string& path = "a") {
    return AudioFileDemuxer::open(*file_, size_, path, interruption_, error_);
  }

  support::InstalledRecordingServices services_;  // console lines
  FfmpegLog::Budget log_;
  std::optional<FfmpegLog::Scope> logScope_;
  const std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
  DecodingBudget interruption_{cancelled_};
  support::TestUserAudioFiles storage_;
  std::unique_ptr<File> file_;
  std::uint64_t size_ = 0;  // bytes
  int error_ = 0;           // of the last demux()
};

}  // namespace platform
