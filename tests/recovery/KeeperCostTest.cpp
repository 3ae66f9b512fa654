// What the keeper takes of the machine: nothing while the program runs, and while it writes a
// recording as much memory for a long one as for a short one.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include <unistd.h>

#include "keeper/KeptRecordings.h"
#include "platform/base/AudioTypes.h"
#include "recovery/KeeperConnection.h"
#include "recovery/LongRecording.h"
#include "support/Eventually.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/ChildProcess.h"

namespace {

using namespace support;

std::size_t openFiles(int process) {
  std::error_code gone;
  const std::filesystem::directory_iterator all("/proc/" + std::to_string(process) + "/fd", gone);
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

class KeeperCostTest : public testing::Test {
 protected:
  KeeperCostTest() {
    // The keeper inherits it; no other thread runs.
    ::setenv("XDG_DATA_HOME", data_.path().c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
    connection_->start();
  }

  /// Kilobytes that the keeper had at most until it had written a recording of so many seconds.
  [[nodiscard]] static std::uint64_t peakAfterRecovering(std::uint64_t seconds) {
    const TemporaryFolder data;
    const LongRecording recording(1, seconds * 44100 * platform::kWorkingFrameBytes);
    const RecoveryCost cost = recover(recording, data.path());
    EXPECT_EQ(recoveredNames(data.path()).size(), 1U);
    return cost.peakKilobytes;
  }

  TemporaryFolder data_;
  InstalledRecordingServices services_;
  std::unique_ptr<KeeperConnection> connection_ = std::make_unique<KeeperConnection>(ORVO_KEEPER);
};

TEST_F(KeeperCostTest, MemoryDoesNotGrowWithTheRecording) {
  if (support::kAnySanitizer) {
    GTEST_SKIP() << "a sanitizer's memory grows with every access";
  }
  constexpr std::uint64_t kNoise = 256;  // kilobytes: where the system puts pages
  const std::uint64_t ofSeconds = peakAfterRecovering(10);
  const std::uint64_t ofMinutes = peakAfterRecovering(10 * 60);  // 212 MB
  EXPECT_GT(ofSeconds, 0U);
  EXPECT_LE(ofMinutes, ofSeconds + kNoise);
  RecordProperty("kilobytes", std::to_string(ofSeconds) + " " + std::to_string(ofMinutes));
}

TEST_F(KeeperCostTest, SleepsWhateverHappensToADocument) {
  const auto buffer = editedBuffer();
  connection_->keep(
      1, {.audio = buffer->fileDescriptor(), .journal = buffer->journal()->descriptor()});
  const int keeper = connection_->keeperProcess();
  const auto wakes = [&] { return statusOf(keeper, "voluntary_ctxt_switches"); };
  // It has taken the document and sleeps again: it counts no more.
  std::uint64_t before = 0;
  ASSERT_TRUE(eventually([&] {
    const std::uint64_t last = std::exchange(before, wakes());
    return last > 0 && last == before && openFiles(keeper) == 6 && processState(keeper) == 'S';
  }));
  for (std::uint64_t i = 0; i < 20'000; ++i) {  // twice as long as the journal is without a state
    write(*buffer, pattern(800, 1), i * 800);
  }
  buffer->setWaypoint();
  buffer->cutoffBufferAfterPosition(100);
  buffer->undo();
  buffer->journal()->setState(journal::State::saved);
  EXPECT_EQ(wakes(), before);
}

}  // namespace
