// The block list buffer compared with its yardsticks. The ratios are those of pairs of names:
//   RecorderWrite32KiB            / Yardstick_BareWrite32KiB     at most 1.5
//   RecorderWrite with a journal  / the same without one         at most 1.03
//   RandomRead64KiB/100000        / RandomRead64KiB/10           at most 4
//   Play, Summarise, WriteOver: 100,000 blocks                   / the same with 10
//   CutAfter, CutBefore, Undo, Redo with 10000 blocks            at most 1 ms each
#include "storage/OVBlockBuffer.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <random>
#include <vector>

#include "platform/files/TemporaryFiles.h"
#include "storage/FoldedTemporaryFiles.h"
#include "waveform/OVDynamicWaveForm.h"

namespace {

constexpr std::uint32_t kRecorderBytes = 4096 * 8;  // one buffer of the recorder
constexpr std::uint64_t kReadBytes = std::uint64_t{64} * 1024;
constexpr std::uint64_t kChunks = 100'000;  // of kRecorderBytes each: about 2 h 35 min of audio
constexpr int kWritesOfARun = 8192;         // 256 MiB on the disk

std::vector<std::byte> audio(std::size_t count) {
  std::vector<std::byte> bytes(count);
  std::mt19937 random(1);
  for (auto& byte : bytes) {
    byte = static_cast<std::byte>(random());
  }
  return bytes;
}

void Yardstick_BareWrite32KiB(benchmark::State& state) {
  const auto files = platform::temporaryFiles();
  const auto created = files->createUnlinked(files->directory() + "orvoXXXXXX");
  const auto bytes = audio(kRecorderBytes);
  std::uint64_t offset = 0;
  for (auto _ : state) {
    if (created->file->writeAt(bytes.data(), kRecorderBytes, offset).byteCount != kRecorderBytes) {
      state.SkipWithError("the disk is full");
      break;
    }
    offset += kRecorderBytes;
  }
}
BENCHMARK(Yardstick_BareWrite32KiB)
    ->Name("RecorderWrite/yardstick: a bare write of 32 KiB")
    ->Iterations(kWritesOfARun);

enum class Journal { none, kept };

// As a document that is edited has it.
void beginJournal(OVBlockBuffer& buffer, Journal journal) {
  if (journal == Journal::kept) {
    static_cast<void>(buffer.beginJournal({.created = 1, .recoveredFrom = {}}));
  }
}

void RecorderWrite32KiB(benchmark::State& state, Journal journal) {
  const auto buffer = OVBlockBuffer::init();
  beginJournal(*buffer, journal);
  const auto bytes = audio(kRecorderBytes);
  std::uint64_t offset = 0;
  for (auto _ : state) {
    buffer->writeData(bytes.data(), offset, kRecorderBytes);
    offset += kRecorderBytes;
  }
}
BENCHMARK_CAPTURE(RecorderWrite32KiB, without, Journal::none)
    ->Name("RecorderWrite/32 KiB into the block list")
    ->Iterations(kWritesOfARun);
BENCHMARK_CAPTURE(RecorderWrite32KiB, with, Journal::kept)
    ->Name("RecorderWrite/the same with a journal")
    ->Iterations(kWritesOfARun);

// The list alone: small writes, the rest of the recorder's path being the disk's.
void SmallWrite(benchmark::State& state, Journal journal) {
  const auto buffer = OVBlockBuffer::init();
  beginJournal(*buffer, journal);
  const auto bytes = audio(64);
  std::uint64_t offset = 0;
  for (auto _ : state) {
    buffer->writeData(bytes.data(), offset, 64);
    offset += 64;
  }
}
BENCHMARK_CAPTURE(SmallWrite, without, Journal::none)
    ->Name("WriteOf64Bytes/yardstick: without a journal")
    ->Iterations(200'000);
BENCHMARK_CAPTURE(SmallWrite, with, Journal::kept)
    ->Name("WriteOf64Bytes/with a journal")
    ->Iterations(200'000);

// Lays out `chunks` chunks of `bytes` in `blocks` blocks that cannot merge: in the list, each block
// is followed by one that is not its neighbour in the recording.
void layOut(OVBlockBuffer& buffer, std::uint64_t chunks, std::uint64_t blocks,
            const std::vector<std::byte>& bytes) {
  const std::uint64_t chunksOfABlock = chunks / blocks;
  for (std::uint64_t parity = 0; parity < 2; ++parity) {
    for (std::uint64_t block = parity; block < blocks; block += 2) {
      for (std::uint64_t chunk = 0; chunk < chunksOfABlock; ++chunk) {
        const std::uint64_t index = block * chunksOfABlock + chunk;
        buffer.writeData(bytes.data(), index * bytes.size(),
                         static_cast<std::uint32_t>(bytes.size()));
      }
    }
  }
  buffer.optimize();
}

// The same recording, in few blocks and in many.
void RandomRead64KiB(benchmark::State& state) {
  benchmarks::FoldedTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  const auto buffer = OVBlockBuffer::init();
  layOut(*buffer, kChunks, static_cast<std::uint64_t>(state.range(0)), audio(kRecorderBytes));
  if (buffer->blocklist().size() != static_cast<std::size_t>(state.range(0))) {
    state.SkipWithError("not as many blocks as wanted");
    return;
  }
  std::vector<std::byte> destination(kReadBytes);
  std::mt19937_64 random(2);
  std::uniform_int_distribution<std::uint64_t> offsets(0, kChunks * kRecorderBytes - kReadBytes);
  for (auto _ : state) {
    const auto result = buffer->readDataInto(destination.data(), kReadBytes, offsets(random));
    if (result.byteCount != kReadBytes) {
      state.SkipWithError("short read");
      break;
    }
  }
}
BENCHMARK(RandomRead64KiB)->Name("RandomRead/yardstick: among 10 blocks")->Arg(10);
BENCHMARK(RandomRead64KiB)->Name("RandomRead/among 100,000 blocks")->Arg(100'000);

void WriteOver32KiB(benchmark::State& state, Journal journal) {
  benchmarks::FoldedTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  const auto buffer = OVBlockBuffer::init();
  const auto bytes = audio(kRecorderBytes);
  layOut(*buffer, kChunks, static_cast<std::uint64_t>(state.range(0)), bytes);
  beginJournal(*buffer, journal);
  std::mt19937_64 random(3);
  std::uniform_int_distribution<std::uint64_t> offsets(0, kChunks * kRecorderBytes);
  for (auto _ : state) {
    buffer->writeData(bytes.data(), offsets(random), kRecorderBytes);
  }
}
BENCHMARK_CAPTURE(WriteOver32KiB, few, Journal::none)
    ->Name("WriteOver/yardstick: 10 blocks")
    ->Arg(10)
    ->Iterations(1000);
BENCHMARK_CAPTURE(WriteOver32KiB, many, Journal::none)
    ->Name("WriteOver/100,000 blocks")
    ->Arg(100'000)
    ->Iterations(1000);
BENCHMARK_CAPTURE(WriteOver32KiB, journal, Journal::kept)
    ->Name("WriteOver/100,000 blocks with a journal")
    ->Arg(100'000)
    ->Iterations(1000);

// As the player reads: 1024 frames at a time, one after the other.
void Play(benchmark::State& state) {
  benchmarks::FoldedTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  const auto buffer = OVBlockBuffer::init();
  layOut(*buffer, kChunks, static_cast<std::uint64_t>(state.range(0)), audio(kRecorderBytes));
  constexpr std::uint64_t kPlayed = 1024 * 8;
  std::vector<std::byte> destination(kPlayed);
  std::uint64_t offset = kChunks / 2 * kRecorderBytes + 40;
  for (auto _ : state) {
    if (buffer->readDataInto(destination.data(), kPlayed, offset).byteCount != kPlayed) {
      offset = 40;
    }
    offset += kPlayed;
  }
}
BENCHMARK(Play)->Name("Play/yardstick: 10 blocks")->Arg(10);
BENCHMARK(Play)->Name("Play/100,000 blocks")->Arg(100'000);

// The summary after an edit: from scratch, of blocks of 16 frames.
void Summarise(benchmark::State& state) {
  const auto buffer = OVBlockBuffer::init();
  layOut(*buffer, kChunks, static_cast<std::uint64_t>(state.range(0)), audio(128));
  const auto summary = OVDynamicWaveForm::initWithBuffer(buffer);
  for (auto _ : state) {
    summary->setShouldRegenerateWaveform(true);
    summary->generate();
  }
}
BENCHMARK(Summarise)
    ->Name("Summarise/yardstick: 10 blocks")
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Summarise)->Name("Summarise/100,000 blocks")->Arg(100'000)->Unit(benchmark::kMillisecond);

// An edit on a buffer of this many blocks; `before` prepares it, untimed.
template <typename Before, typename Edit>
void timeEdit(benchmark::State& state, Before before, Edit edit) {
  const auto blocks = static_cast<std::uint64_t>(state.range(0));
  const auto buffer = OVBlockBuffer::init();
  layOut(*buffer, blocks, blocks, audio(64));
  if (buffer->blocklist().size() != blocks) {
    state.SkipWithError("not as many blocks as wanted");
    return;
  }
  buffer->setWaypoint();
  for (auto _ : state) {
    before(*buffer);
    const auto start = std::chrono::steady_clock::now();
    edit(*buffer);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(time.count());
  }
}

// Frames: inside a block.
std::uint64_t middleOf(const OVBlockBuffer& buffer) {
  return buffer.bufferSizeInFrames() / 2 + 3;
}

void undo(OVBlockBuffer& buffer) {
  buffer.undo();
}

void CutAfter(benchmark::State& state) {
  timeEdit(state, undo,
           [](OVBlockBuffer& buffer) { buffer.cutoffBufferAfterPosition(middleOf(buffer)); });
}

void CutBefore(benchmark::State& state) {
  timeEdit(state, undo,
           [](OVBlockBuffer& buffer) { buffer.cutoffBufferBeforePosition(middleOf(buffer)); });
}

void Undo(benchmark::State& state) {
  timeEdit(
      state, [](OVBlockBuffer&) {}, undo);
}

void Redo(benchmark::State& state) {
  timeEdit(state, undo, [](OVBlockBuffer& buffer) { buffer.redo(); });
}

// The first merge after a cut examines every block.
void MergeAfterCut(benchmark::State& state) {
  timeEdit(
      state,
      [](OVBlockBuffer& buffer) {
        buffer.undo();
        buffer.cutoffBufferBeforePosition(middleOf(buffer));
      },
      [](OVBlockBuffer& buffer) { buffer.optimize(); });
}

void asEdit(benchmark::internal::Benchmark* edit) {
  edit->Arg(10'000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMicrosecond);
}
BENCHMARK(CutAfter)->Name("Edit of so many blocks/cut after")->Apply(asEdit);
BENCHMARK(CutBefore)->Name("Edit of so many blocks/cut before")->Apply(asEdit);
BENCHMARK(Undo)->Name("Edit of so many blocks/undo")->Apply(asEdit);
BENCHMARK(Redo)->Name("Edit of so many blocks/redo")->Apply(asEdit);
BENCHMARK(MergeAfterCut)->Name("Edit of so many blocks/merge after cut")->Apply(asEdit);

}  // namespace
