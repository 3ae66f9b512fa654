// Reading and writing sound files beside the ffmpeg program, which does the same with one thread.
// Budgets: MP3 and m4a at most 1.3 times, an hour of WAV 0.8 times its yardstick including storing
// and summarising, saving an hour 0.8 times as WAV and 1.05 times as AAC.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "audio/OVAudioFileReader.h"
#include "audio/OVAudioFileWriter.h"
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

// As a document saves: from its storage into a file, then synced.
void writeWithWriter(benchmark::State& state, std::uint32_t kind) {
  const std::string& source = benchmarks::hourOfRawFloats();
  const std::string target = benchmarks::scratchFile("saved");
  std::vector<char> chunk(kChunk * 8);
  for (auto _ : state) {
    std::ifstream frames(source, std::ios::binary);
    const auto writer = OVAudioFileWriter::initWithFile(target, kind);
    if (writer == nullptr) {
      state.SkipWithError("not created");
      return;
    }
    do {
      frames.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    } while (writer->sinkData(chunk.data(), static_cast<std::uint64_t>(frames.gcount())) > 0);
    if (!writer->close() || !benchmarks::syncFile(target)) {
      state.SkipWithError("not written");
      return;
    }
  }
}

void writeWithFfmpeg(benchmark::State& state, const std::vector<std::string>& encoding) {
  const std::string& source = benchmarks::hourOfRawFloats();
  const std::string target = benchmarks::scratchFile("encoded");
  std::vector<std::string> command{"-f", "f32le", "-ar", "44100", "-ac", "2", "-i", source};
  command.insert(command.end(), encoding.begin(), encoding.end());
  command.push_back(target);
  for (auto _ : state) {
    if (!benchmarks::ffmpeg(command) || !benchmarks::syncFile(target)) {
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
  using Words = std::vector<std::string>;
  add("ReadHourOfWav/yardstick: ffmpeg, as raw floats", rawWithFfmpeg);
  add("ReadHourOfWav/the reader", readWithReader, benchmarks::hourOfWav);
  add("ReadTenMinutesOfMp3/yardstick: ffmpeg, to nothing", readWithFfmpeg,
      benchmarks::tenMinutesOfMp3);
  add("ReadTenMinutesOfMp3/the reader", readWithReader, benchmarks::tenMinutesOfMp3);
  add("ReadTenMinutesOfM4a/yardstick: ffmpeg, to nothing", readWithFfmpeg,
      benchmarks::tenMinutesOfM4a);
  add("ReadTenMinutesOfM4a/the reader", readWithReader, benchmarks::tenMinutesOfM4a);
  add("WriteHourOfWav/yardstick: ffmpeg, synced", writeWithFfmpeg,
      Words{"-f", "wav", "-c:a", "pcm_s16le"});
  add("WriteHourOfWav/the writer, synced", writeWithWriter, OVAudioFileWriter::kWave);
  add("WriteHourOfAac/yardstick: ffmpeg, synced", writeWithFfmpeg,
      Words{"-f", "ipod", "-c:a", "aac", "-b:a", "256k"});
  add("WriteHourOfAac/the writer, synced", writeWithWriter, OVAudioFileWriter::kAac);
  return true;
}();

}  // namespace
