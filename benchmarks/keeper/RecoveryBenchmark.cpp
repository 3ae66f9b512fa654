// How fast the keeper writes a recording, compared with a copy of the same bytes on the same disk,
// both synced. The recording of many blocks has the same length.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include "keeper/KeptRecording.h"
#include "platform/base/AudioTypes.h"
#include "platform/files/PosixFile.h"
#include "storage/OVBlockBuffer.h"

namespace {

constexpr std::uint64_t kBytes =
    std::uint64_t{600} * 44100 * platform::kWorkingFrameBytes;  // ten minutes

std::unique_ptr<platform::File> sameFile(int descriptor) {
  return std::make_unique<platform::PosixFile>(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
}

// In so many blocks, half of which were recorded last.
std::shared_ptr<OVBlockBuffer> recording(std::uint64_t blocks) {
  auto buffer = OVBlockBuffer::init();
  const std::uint64_t bytes =
      kBytes / blocks / platform::kWorkingFrameBytes * platform::kWorkingFrameBytes;
  const std::vector<std::byte> sound(bytes, std::byte{0x3c});
  for (std::uint64_t parity = 0; parity < 2; ++parity) {
    for (std::uint64_t block = parity; block < blocks; block += 2) {
      buffer->writeData(sound.data(), block * bytes, static_cast<std::uint32_t>(bytes));
    }
  }
  if (buffer->beginJournal({.created = 1'000'000'000, .recoveredFrom = {}}) != nullptr) {
    buffer->journal()->setState(journal::State::edited);
  }
  return buffer;
}

void Yardstick_Copy(benchmark::State& state) {
  const auto buffer = recording(2);
  const auto from = sameFile(buffer->fileDescriptor());
  const QTemporaryDir folder;
  std::vector<std::byte> bytes(std::size_t{1} << 20);
  for (auto _ : state) {
    const std::string path = folder.filePath("copy").toStdString();
    platform::PosixFile to(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    std::uint64_t at = 0;
    for (std::uint64_t got = 1; got > 0; at += got) {
      got = from->readAt(bytes.data(), bytes.size(), at).byteCount;
      static_cast<void>(to.writeAt(bytes.data(), got, at));
    }
    ::fsync(to.descriptor());
    state.PauseTiming();
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
}
BENCHMARK(Yardstick_Copy)
    ->Name("Recovery/yardstick: ten minutes copied and synced")
    ->UseRealTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

void Recover(benchmark::State& state) {
  const auto buffer = recording(static_cast<std::uint64_t>(state.range(0)));
  const QTemporaryDir data;
  const std::string path = data.path().toStdString();
  const auto folder = RecoveredFolder::open(path);
  for (auto _ : state) {
    KeptRecording kept(sameFile(buffer->fileDescriptor()),
                       sameFile(buffer->journal()->descriptor()));
    if (kept.recover(**folder) != KeptRecording::Outcome::done) {
      state.SkipWithError("it was not recovered");
      break;
    }
    state.PauseTiming();
    for (const auto& entry : std::filesystem::directory_iterator(path + "/orvo/recovered")) {
      std::filesystem::remove(entry.path());
    }
    state.ResumeTiming();
  }
}
BENCHMARK(Recover)
    ->Name("Recovery/ten minutes in so many blocks")
    ->Arg(2)
    ->Arg(100'000)
    ->UseRealTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
