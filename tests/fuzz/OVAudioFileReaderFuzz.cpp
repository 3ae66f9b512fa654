// Any bytes as a file: opened, measured, read, rewound and read again. What must hold whatever they
// are: no crash, no undefined behaviour, no endless work, finite samples only, the same frames
// after a rewind, one alert at most.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>

#include "audio/OVAudioFileReader.h"
#include "platform/base/ApplicationServices.h"
#include "platform/files/UserAudioFiles.h"
#include "platform/media/FfmpegModule.h"

namespace {

class OneFile : public platform::UserAudioFiles {
 public:
  OneFile(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

  [[nodiscard]] Opened openForReading(const std::string&) override {
    return std::make_unique<Bytes>(bytes_, size_);
  }
  [[nodiscard]] Opened createForWriting(const std::string&) override { std::abort(); }
  [[nodiscard]] Opened writeTo(int) override { std::abort(); }

 private:
  class Bytes : public platform::File {
   public:
    Bytes(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

    platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                  std::uint64_t offset) override {
      const std::uint64_t count = offset < size_ ? std::min(byteCount, size_ - offset) : 0;
      std::copy_n(bytes_ + (count > 0 ? offset : 0), count,
                  static_cast<std::uint8_t*>(destination));
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

  const std::uint8_t* const bytes_;
  const std::size_t size_;
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

void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
  }
}

constexpr std::uint64_t kChunk = 10'000;
constexpr std::uint64_t kMaxFrames = 3'000'000;  // a minute; a few bytes can stand for hours

// How many frames there are.
std::uint64_t hear(OVAudioFileReader& reader) {
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

}  // namespace

// The module must be loaded before the first input: its coverage counts too.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  require(platform::ffmpegModule() != nullptr, "the module is there");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  // The first byte chooses the suffix, which the libraries weigh when the content leaves doubt.
  constexpr const char* kNames[] = {"a.caf", "a.aif", "a.aiff", "a.wav", "a.mp3",
                                    "a.mp4", "a.m4a", "a.m4r",  "a.aac", "a"};
  OneFile file(data + 1, size - 1);
  const platform::Installed<platform::UserAudioFiles>::Scope storage(file);
  const auto services = std::make_shared<CountingServices>();
  const platform::Installed<platform::ApplicationServices>::Scope installation(services);

  const auto reader = OVAudioFileReader::initWithFile(kNames[data[0] % std::size(kNames)]);
  if (reader == nullptr) {
    require(services->alerts == 1, "a failed opening is told once");
    return 0;
  }
  require(reader->fileSizeInFrames() >= 0, "a length is not negative");
  const std::uint64_t first = hear(*reader);
  const bool failed = reader->failed();
  require(services->alerts == (failed ? 1 : 0), "a failed read is told once");
  reader->rewind();
  require(hear(*reader) == first, "as many frames after a rewind");
  require(services->alerts <= 1, "nothing is told twice");
  return 0;
}
