// A recording of twenty hours in 100,000 pieces, when its program has ended.

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>

#include "keeper/KeptRecordings.h"
#include "platform/base/AudioTypes.h"
#include "platform/files/PosixFile.h"
#include "recovery/LongRecording.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"

namespace {

using namespace support;

constexpr std::uint64_t kPieces = 100'000;
constexpr std::uint64_t kBytes =
    std::uint64_t{20} * 3600 * 44100 * platform::kWorkingFrameBytes;  // 25.4 GB

std::unique_ptr<platform::PosixFile> fileAt(const std::string& path, int flags) {
  return std::make_unique<platform::PosixFile>(::open(path.c_str(), flags | O_CLOEXEC, 0600));
}

// Seconds for a byte of a synced copy of the recording's first bytes on the same disk.
double copySecondsOfAByte(platform::File& audio, const TemporaryFolder& folder) {
  constexpr std::uint64_t kCopied = kBytes / 10;
  std::vector<std::byte> bytes(std::size_t{1} << 20);
  const std::string path = folder.file("copy");
  const auto begin = std::chrono::steady_clock::now();
  {
    const auto copy = fileAt(path, O_RDWR | O_CREAT | O_EXCL);
    for (std::uint64_t at = 0; at < kCopied; at += bytes.size()) {
      EXPECT_EQ(audio.readAt(bytes.data(), bytes.size(), at).byteCount, bytes.size());
      EXPECT_EQ(copy->writeAt(bytes.data(), bytes.size(), at).byteCount, bytes.size());
    }
    EXPECT_EQ(::fsync(copy->descriptor()), 0);
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  EXPECT_EQ(::unlink(path.c_str()), 0);
  return took.count() / static_cast<double>(kCopied);
}

TEST(TwentyHoursTest, AreRecoveredAtTheDisksSpeedInTheMemoryOfTenMinutes) {
  if (std::getenv("ORVO_TEST_TWENTY_HOURS") == nullptr) {  // NOLINT(concurrency-mt-unsafe)
    GTEST_SKIP() << "takes minutes and 26 GB of the disk: scripts/test --twenty-hours";
  }
  constexpr std::uint64_t kNoise = 256;  // kilobytes: where the system puts pages
  const InstalledRecordingServices services;
  const TemporaryFolder data;
  constexpr std::uint64_t kShortPiece = 2112;  // bytes: ten minutes in all
  const RecoveryCost ofMinutes =
      recover(LongRecording(kPieces, kShortPiece), data.makeFolder("minutes"));

  const LongRecording hours(kPieces, kBytes / kPieces);
  struct stat journal = {};
  ASSERT_EQ(::fstat(hours.journal->descriptor(), &journal), 0);
  EXPECT_LE(static_cast<std::uint64_t>(journal.st_blocks) * 512, std::uint64_t{16} << 20);
  const double copy = copySecondsOfAByte(*hours.audio, data);
  const std::string folder = data.makeFolder("hours");
  const RecoveryCost ofHours = recover(hours, folder);
  EXPECT_LE(ofHours.peakKilobytes, ofMinutes.peakKilobytes + kNoise);

  const auto names = recoveredNames(folder);
  ASSERT_EQ(names.size(), 1U);
  const auto recovered = fileAt(recoveredPath(folder) + "/" + names[0], O_RDONLY);
  ASSERT_GT(recovered->size(), kBytes);
  const std::uint64_t header = recovered->size() - kBytes;
  EXPECT_LE(header, 4096U);
  for (std::uint64_t number = 0; number < kPieces; ++number) {
    std::uint64_t found = ~number;
    const std::uint64_t place = header + number * (kBytes / kPieces);
    ASSERT_EQ(recovered->readAt(&found, sizeof found, place).byteCount, sizeof found);
    ASSERT_EQ(found, number);
  }
  std::printf(
      "recovered in %.0f s, %.2f times a synced copy; the keeper had %llu KiB, of ten minutes "
      "%llu; the journal has %.1f MiB\n",
      ofHours.seconds, ofHours.seconds / (copy * static_cast<double>(kBytes)),
      static_cast<unsigned long long>(ofHours.peakKilobytes),
      static_cast<unsigned long long>(ofMinutes.peakKilobytes),
      static_cast<double>(journal.st_blocks) / 2048.0);
}

}  // namespace
