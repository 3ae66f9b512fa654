// Summarising an hour of stereo audio in a page-cached file, compared with only reading the same
// bytes in reads of 1 MiB. A summary from scratch may take at most 1.5 times as long.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "storage/OVAudioBufferInterface.h"
#include "waveform/OVDynamicWaveForm.h"
#include "waveform/OVStaticWaveform.h"

namespace {

constexpr std::uint64_t kFrames = 44100ULL * 3600;
constexpr std::uint64_t kBytes = kFrames * 8;
constexpr std::uint64_t kYardstickReadBytes = 1024 * 1024;

/// An unlinked temporary file of one hour of noise.
class HourFile {
 public:
  HourFile() {
    std::string path = std::filesystem::temp_directory_path() / "orvo-benchmark-XXXXXX";
    descriptor_ = mkstemp(path.data());
    unlink(path.c_str());
    std::vector<float> noise(kYardstickReadBytes / sizeof(float));
    std::uint32_t state = 1;
    for (std::uint64_t written = 0; written < kBytes;) {
      for (float& sample : noise) {
        state = state * 1664525 + 1013904223;
        sample = static_cast<float>(static_cast<std::int32_t>(state)) / 2147483648.0F;
      }
      const ssize_t count = write(descriptor_, noise.data(),
                                  std::min<std::uint64_t>(kYardstickReadBytes, kBytes - written));
      if (count <= 0) {
        std::abort();  // no space for the hour: nothing can be measured
      }
      written += static_cast<std::uint64_t>(count);
    }
  }
  ~HourFile() { close(descriptor_); }
  HourFile(const HourFile&) = delete;
  HourFile& operator=(const HourFile&) = delete;

  [[nodiscard]] std::uint64_t readAt(void* destination, std::uint64_t count,
                                     std::uint64_t offset) const {
    const ssize_t got = pread(descriptor_, destination, count, static_cast<off_t>(offset));
    return got > 0 ? static_cast<std::uint64_t>(got) : 0;
  }

 private:
  int descriptor_;
};

/// Created by the first measurement that needs it, removed with the process.
const HourFile& hourFile() {
  static const HourFile file;
  return file;
}

/// The thinnest implementation of the buffer interface over the hour.
class HourBuffer final : public OVAudioBufferInterface {
 public:
  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override {
    const std::uint64_t count = hourFile().readAt(destination, withSize, fromOffset);
    return {.data = static_cast<float*>(destination), .frameCount = count / 8, .byteCount = count};
  }
  [[nodiscard]] platform::AudioStreamBasicDescription format() const override {
    return platform::kWorkingFormat;
  }
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override { return kFrames; }
  [[nodiscard]] std::uint64_t bufferFillSizeInFrames() const override { return kFrames; }
  void writeData(const void*, std::uint64_t, std::uint32_t) override {}
  void cutoffBufferAfterPosition(std::uint64_t) override {}
  void cutoffBufferBeforePosition(std::uint64_t) override {}
  void reverseBuffer() override {}
  void setWaypoint() override {}
  void undo() override {}
  void redo() override {}
  void lock() override {}
  void unlock() override {}
  [[nodiscard]] double powerAtPosition(std::uint64_t) override { return 0.0; }
  [[nodiscard]] std::weak_ptr<OVAudioBufferDelegate> delegate() const override { return {}; }
  void setDelegate(std::weak_ptr<OVAudioBufferDelegate>) override {}
};

void countTheHour(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<std::int64_t>(kBytes) * state.iterations());
}

void SummariseHourYardstickRead(benchmark::State& state) {
  const HourFile& file = hourFile();
  const auto scratch = std::make_unique<std::byte[]>(kYardstickReadBytes);
  for (auto _ : state) {
    std::uint64_t offset = 0;
    while (const std::uint64_t count = file.readAt(scratch.get(), kYardstickReadBytes, offset)) {
      offset += count;
    }
    benchmark::DoNotOptimize(scratch.get());
  }
  countTheHour(state);
}

void SummariseHourDynamic(benchmark::State& state) {
  const auto summary = OVDynamicWaveForm::initWithBuffer(std::make_shared<HourBuffer>());
  for (auto _ : state) {
    summary->setShouldRegenerateWaveform(true);
    summary->generate();
  }
  countTheHour(state);
}

void SummariseHourStatic(benchmark::State& state) {
  const auto summary = OVStaticWaveform::initWithBuffer(std::make_shared<HourBuffer>());
  for (auto _ : state) {
    summary->regenerate();
  }
  countTheHour(state);
}

BENCHMARK(SummariseHourYardstickRead)
    ->Name("SummariseHour/yardstick: reading the hour in large reads")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(SummariseHourDynamic)
    ->Name("SummariseHour/growing summary")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(SummariseHourStatic)
    ->Name("SummariseHour/fixed summary")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
