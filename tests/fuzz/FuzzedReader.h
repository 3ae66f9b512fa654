#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <memory>
#include <string>

#include "audio/OVAudioFileReader.h"
#include "fuzz/FuzzTarget.h"
#include "platform/base/ApplicationServices.h"
#include "platform/files/UserAudioFiles.h"

/// What the fuzz targets of the reader share.
///
/// Threads: main.
namespace fuzz {

/// Names of every suffix, which the libraries weigh when the content leaves doubt.
inline const char* nameOfKind(std::uint8_t number) {
  constexpr const char* kNames[] = {"a.caf", "a.aif", "a.aiff", "a.wav", "a.mp3",
                                    "a.mp4", "a.m4a", "a.m4r",  "a.aac", "a"};
  return kNames[number % std::size(kNames)];
}

/// The only file there is; `make` opens it.
class OneFile : public platform::UserAudioFiles {
 public:
  using Make = std::function<std::unique_ptr<platform::File>()>;

  explicit OneFile(Make make) : make_(std::move(make)) {}

  [[nodiscard]] Opened openForReading(const std::string&) override { return make_(); }
  [[nodiscard]] Opened createForWriting(const std::string&) override { std::abort(); }
  [[nodiscard]] Opened writeTo(int) override { std::abort(); }

 private:
  const Make make_;
};

/// The bytes of an input as a file that is only read.
class BytesFile : public platform::File {
 public:
  BytesFile(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    const std::uint64_t count = offset < size_ ? std::min(byteCount, size_ - offset) : 0;
    std::copy_n(bytes_ + (count > 0 ? offset : 0), count, static_cast<std::uint8_t*>(destination));
    return {.byteCount = count, .error = 0};
  }
  platform::FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override {
    std::abort();
  }
  std::uint64_t size() override { return size_; }
  int setSize(std::uint64_t) override { std::abort(); }

 private:
  const std::uint8_t* const bytes_;
  const std::uint64_t size_;
};

class CountingServices : public platform::ApplicationServices {
 public:
  void showModalAlert(const std::string&, const std::string&) override { ++alerts; }
  void postModalAlert(const std::string&, const std::string&) override { ++alerts; }
  void logToConsole(const std::string&) override {}
  void registerTempFile(const std::string&) override {}
  void cancelTermination() override {}

  int alerts = 0;
};

/// Reads on to the end, or for a minute, since a few bytes can stand for hours. How many frames
/// there are.
inline std::uint64_t hear(OVAudioFileReader& reader) {
  constexpr std::uint64_t kChunk = 10'000;
  constexpr std::uint64_t kMaxFrames = 3'000'000;
  std::uint64_t all = 0;
  while (all < kMaxFrames) {
    const std::uint32_t frames = reader.readFrameChunkWithSize(kChunk);
    if (frames == 0) {
      break;
    }
    require(frames <= kChunk, "no more frames than asked for");
    const auto* const samples = static_cast<const float*>(reader.exposeBuffer());
    for (std::size_t i = 0; i < std::size_t{frames} * 2; ++i) {
      require(std::isfinite(samples[i]), "samples are finite");
    }
    all += frames;
  }
  return all;
}

}  // namespace fuzz
