// Opening a file until it can be edited, as a document does: decode, store, summarise. At most 0.8
// times the time of ffmpeg to write an hour of WAV as raw floats, 2 times that of cp to copy those
// floats, 1.3 times that of ffmpeg to decode ten minutes of MP3 or m4a and discard the result. The
// counter shows the peak of resident memory, which must not depend on the length and stays below 80
// MB.
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "PeakMemory.h"
#include "audio/OVAudioFileReader.h"
#include "audio/SoundFiles.h"
#include "document/files/loadFile.h"
#include "storage/OVBlockBuffer.h"
#include "waveform/OVDynamicWaveForm.h"

namespace {

using Path = const std::string& (*)();

// Returns the document's length in frames.
std::uint64_t openDocument(const std::string& path) {
  const std::shared_ptr<OVAudioBufferInterface> buffer = OVBlockBuffer::init();
  const auto reader = OVAudioFileReader::initWithFile(path);
  if (!buffer || !reader) {
    return 0;
  }
  const auto summary = OVDynamicWaveForm::initWithBuffer(buffer);
  static_cast<void>(loadFile(*reader, {.buffer = buffer,
                                       .atByteOffset = 0,
                                       .cancelled = std::make_shared<std::atomic<bool>>(false),
                                       .takeWriteError = [] { return 0; },
                                       .progress = [](std::uint64_t, double) {}}));
  summary->setShouldRegenerateWaveform(true);
  summary->generateNoLock();
  return buffer->bufferSizeInFrames();
}

void open(benchmark::State& state, Path file) {
  const std::string& path = file();
  benchmarks::forgetPeakMemory();
  for (auto _ : state) {
    if (openDocument(path) == 0) {
      state.SkipWithError("nothing was loaded");
      return;
    }
  }
  state.counters["peak_MB"] = benchmarks::peakMegabytes();
}

void yardstick(benchmark::State& state, Path file, bool asRawFloats) {
  const std::string& path = file();
  const std::string target = benchmarks::scratchFile("opened.raw");
  for (auto _ : state) {
    const bool done = asRawFloats ? benchmarks::ffmpeg({"-i", path, "-f", "f32le", target})
                                  : benchmarks::ffmpeg({"-i", path, "-f", "null", "-"});
    if (!done) {
      state.SkipWithError("ffmpeg failed");
      return;
    }
  }
}

void copyOfTheRawFloats(benchmark::State& state) {
  const std::string& source = benchmarks::hourOfRawFloats();
  const std::string target = benchmarks::scratchFile("copied.raw");
  for (auto _ : state) {
    if (!benchmarks::copyFile(source, target)) {
      state.SkipWithError("cp failed");
      return;
    }
  }
}

template <typename Function, typename... Arguments>
void add(const char* name, Function function, Arguments... arguments) {
  benchmark::RegisterBenchmark(name, function, arguments...)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
}

const bool kRegistered = [] {
  add("OpenHourOfWav/yardstick: ffmpeg, as raw floats", yardstick, benchmarks::hourOfWav, true);
  add("OpenHourOfWav/a document", open, benchmarks::hourOfWav);
  add("OpenHourOfWavAndCopy/yardstick: cp of the raw floats", copyOfTheRawFloats);
  add("OpenHourOfWavAndCopy/a document", open, benchmarks::hourOfWav);
  add("OpenTenMinutesOfMp3/yardstick: ffmpeg, to nothing", yardstick, benchmarks::tenMinutesOfMp3,
      false);
  add("OpenTenMinutesOfMp3/a document", open, benchmarks::tenMinutesOfMp3);
  add("OpenTenMinutesOfM4a/yardstick: ffmpeg, to nothing", yardstick, benchmarks::tenMinutesOfM4a,
      false);
  add("OpenTenMinutesOfM4a/a document", open, benchmarks::tenMinutesOfM4a);
  add("OpenMemory/ten minutes of WAV", open, benchmarks::tenMinutesOfWav);
  add("OpenMemory/three hours of WAV", open, benchmarks::threeHoursOfWav);
  return true;
}();

}  // namespace
