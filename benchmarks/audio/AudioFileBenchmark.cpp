// Reading sound files, compared with the ffmpeg program on one thread: the share of decoding in
// opening a document.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "audio/OVAudioFileReader.h"
#include "audio/SoundFiles.h"

namespace {

constexpr std::uint64_t kChunk = 264'600;  // frames, as a document loads

using Path = const std::string& (*)();

void readWithReader(benchmark::State& state, Path file) {
  const std::string& path = file();
  for (auto _ : state) {
    const auto reader = OVAudioFileReader::initWithFile(path);
    std::uint64_t frames = 0;
    while (const std::uint32_t part = reader ? reader->readFrameChunkWithSize(kChunk) : 0) {
      frames += part;
    }
    if (frames == 0) {
      state.SkipWithError("nothing was read");
      return;
    }
  }
}

void readWithFfmpeg(benchmark::State& state, Path file) {
  const std::string& path = file();
  for (auto _ : state) {
    if (!benchmarks::ffmpeg({"-i", path, "-f", "null", "-"})) {
      state.SkipWithError("ffmpeg failed");
      return;
    }
  }
}

void rawWithFfmpeg(benchmark::State& state) {
  const std::string& path = benchmarks::hourOfWav();
  const std::string target = benchmarks::scratchFile("decoded.raw");
  for (auto _ : state) {
    if (!benchmarks::ffmpeg({"-i", path, "-f", "f32le", target})) {
      state.SkipWithError("ffmpeg failed");
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
  add("ReadHourOfWav/yardstick: ffmpeg, as raw floats", rawWithFfmpeg);
  add("ReadHourOfWav/the reader", readWithReader, benchmarks::hourOfWav);
  add("ReadTenMinutesOfMp3/yardstick: ffmpeg, to nothing", readWithFfmpeg,
      benchmarks::tenMinutesOfMp3);
  add("ReadTenMinutesOfMp3/the reader", readWithReader, benchmarks::tenMinutesOfMp3);
  add("ReadTenMinutesOfM4a/yardstick: ffmpeg, to nothing", readWithFfmpeg,
      benchmarks::tenMinutesOfM4a);
  add("ReadTenMinutesOfM4a/the reader", readWithReader, benchmarks::tenMinutesOfM4a);
  return true;
}();

}  // namespace
