// The program is killed: its keeper writes the recordings that were not saved.

#include <csignal>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <unistd.h>

#include "acceptance/DocumentTest.h"
#include "support/programs/AudioFileTools.h"
#include "support/programs/LimitedDisk.h"

using namespace support;

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kChunk = 4096 * kChannels;  // samples written at a time

class Recovery : public DocumentTest {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(startWithKeeper({})); }

  void startWithKeeper(RunningOrvo::Options options) {
    options.dataFolder = data_;
    ASSERT_NO_FATAL_FAILURE(startOrvo(options));
    ASSERT_TRUE(eventually([&] { return orvo_->keeperPid() != 0; }));
  }

  [[nodiscard]] std::string recoveredFolder() const { return data_ + "/orvo/recovered"; }

  /// Names of the recovered files, sorted.
  [[nodiscard]] std::vector<std::string> recovered() const {
    return fs::exists(recoveredFolder()) ? names(recoveredFolder()) : std::vector<std::string>();
  }

  /// The temporary file of each document, which stays readable after the program's end.
  void holdTemporaryFiles() {
    for (const std::string& path : orvo_->recordingPaths()) {
      held_.push_back(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    }
  }

  /// Ends the program with a signal; returns once its keeper has ended.
  void endBy(int signal) {
    holdTemporaryFiles();
    const pid_t keeper = orvo_->keeperPid();
    ASSERT_NE(keeper, 0);
    orvo_->process().signal(signal);
    ASSERT_TRUE(orvo_->process().waitForExit());
    ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  }

  /// Everything that was written to the temporary file of a document.
  [[nodiscard]] Samples written(std::size_t document = 0) const {
    return document < held_.size() ? readRaw("/dev/fd/" + std::to_string(held_[document]))
                                   : Samples();
  }

  [[nodiscard]] Samples recoveredAudio(std::size_t file = 0) const {
    return file < recovered().size() ? decodedByFfmpeg(recoveredFolder() + "/" + recovered()[file])
                                     : Samples();
  }

  /// At most the chunk that was just being written is missing at the end.
  static void expectAllOf(const Samples& written, const Samples& found) {
    EXPECT_LE(found.size(), written.size());
    EXPECT_LE(written.size() - found.size(), kChunk);
    EXPECT_TRUE(found == Samples(written.begin(),
                                 written.begin() + static_cast<std::ptrdiff_t>(found.size())));
  }

  ~Recovery() override {
    for (const int held : held_) {
      ::close(held);
    }
  }

  const std::string data_ = folder_.makeFolder("data");
  std::vector<int> held_;
};

TEST_F(Recovery, KilledWhileRecordingLosesNothingThatWasWritten) {
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(1.0, 91)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  ASSERT_EQ(recovered().size(), 1U);
  EXPECT_TRUE(recovered()[0].starts_with("Orvo recording 20")) << recovered()[0];
  EXPECT_TRUE(recovered()[0].ends_with(".caf")) << recovered()[0];
  EXPECT_GT(written().size(), kFramesPerSecond);
  expectAllOf(written(), recoveredAudio());
}

TEST_F(Recovery, OnlyTheUserReadsWhatWasRecovered) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 92)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGABRT));
  ASSERT_EQ(recovered().size(), 1U);
  EXPECT_EQ(fs::status(recoveredFolder()).permissions(), fs::perms::owner_all);
  EXPECT_EQ(fs::status(recoveredFolder() + "/" + recovered()[0]).permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Recovery, KilledWhileRecordingOverTheMiddleKeepsWhatIsAroundIt) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(2.0, 93)));
  const Samples before = orvo_->recorded();
  ASSERT_TRUE(screen_->pressKey("Return"));  // to the start
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(0.3, 94)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGSEGV));
  const Samples all = written();
  const Samples found = recoveredAudio();
  ASSERT_EQ(found.size(), before.size());
  const auto over = static_cast<std::ptrdiff_t>(all.size() - before.size());
  ASSERT_GT(over, 0);
  // The chunk that was just being written may be missing.
  const auto parted =
      std::mismatch(found.begin(), found.end(),
                    all.begin() + static_cast<std::ptrdiff_t>(before.size()), all.end());
  const auto mapped = parted.first - found.begin();
  EXPECT_GE(mapped, over - static_cast<std::ptrdiff_t>(kChunk));
  EXPECT_TRUE(std::equal(found.begin() + mapped, found.end(), before.begin() + mapped));
}

TEST_F(Recovery, EditsAreRecoveredAsTheyStand) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(1.0, 95)));
  const Samples first = orvo_->recorded();
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 96)));
  ASSERT_TRUE(screen_->pressKey("ctrl+z"));  // the second recording
  ASSERT_TRUE(screen_->screenshotAtRest(orvo_->window(), folder_.file("undone.png")));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  EXPECT_TRUE(recoveredAudio() == first);
}

TEST_F(Recovery, EveryWindowIsRecovered) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 97)));
  for (std::uint32_t window = 1; window < 3; ++window) {
    const Window opened = openFurtherWindow();
    ASSERT_FALSE(opened.empty());
    ASSERT_TRUE(screen_->activate(opened));
    ASSERT_TRUE(screen_->pressKey("r"));
    ASSERT_TRUE(orvo_->waitUntilRecorded(1, window));
  }
  ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(0.5, 98)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  ASSERT_EQ(recovered().size(), 3U);
  // The names are those of the times, which may be equal.
  for (std::size_t file = 0; file < 3; ++file) {
    const Samples found = recoveredAudio(file);
    const auto isOf = [&](std::size_t window) {
      const Samples all = written(window);
      return found.size() <= all.size() && all.size() - found.size() <= kChunk &&
             std::equal(found.begin(), found.end(), all.begin());
    };
    EXPECT_EQ(isOf(0) + isOf(1) + isOf(2), 1) << recovered()[file];
  }
}

TEST_F(Recovery, NothingIsRecoveredThatWasSavedOrDiscardedOrNeverChanged) {
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 99)));
  ASSERT_NO_FATAL_FAILURE(saveAs(document("saved.wav"), Kind::wav));
  const Window further = openFurtherWindow();
  ASSERT_FALSE(further.empty());
  ASSERT_TRUE(screen_->activate(further));
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_TRUE(orvo_->waitUntilRecorded(1, 1));
  ASSERT_TRUE(screen_->pressKey("r"));
  ASSERT_TRUE(screen_->close(further));
  ASSERT_NO_FATAL_FAILURE(answerSheet(Answer::dontSave));
  ASSERT_TRUE(screen_->waitUntilGone(further));
  ASSERT_FALSE(openFurtherWindow().empty());
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  EXPECT_EQ(recovered(), std::vector<std::string>());
}

TEST_F(Recovery, QuitLeavesNoKeeperAndNoFile) {
  const pid_t keeper = orvo_->keeperPid();
  ASSERT_TRUE(screen_->pressKey("ctrl+q"));
  ASSERT_TRUE(orvo_->process().waitForExit());
  EXPECT_TRUE(eventually([&] { return hasEnded(keeper); }));
  EXPECT_FALSE(fs::exists(data_ + "/orvo"));
}

TEST_F(Recovery, KeeperThatIsKilledIsReplacedAndKnowsTheRecording) {
  ASSERT_NO_FATAL_FAILURE(beginRecording());
  const pid_t first = orvo_->keeperPid();
  ASSERT_EQ(::kill(first, SIGKILL), 0);
  ASSERT_TRUE(eventually([&] {
    const pid_t present = orvo_->keeperPid();
    return present != 0 && present != first;
  }));
  ASSERT_NO_FATAL_FAILURE(feed(signalOfSeconds(0.3, 100)));
  ASSERT_NO_FATAL_FAILURE(endBy(SIGKILL));
  expectAllOf(written(), recoveredAudio());
}

TEST_F(Recovery, StoppedKeeperStopsNothing) {
  const pid_t keeper = orvo_->keeperPid();
  ASSERT_EQ(::kill(keeper, SIGSTOP), 0);
  ASSERT_NO_FATAL_FAILURE(record(signalOfSeconds(0.3, 101)));
  holdTemporaryFiles();
  orvo_->process().signal(SIGKILL);
  ASSERT_TRUE(orvo_->process().waitForExit());
  EXPECT_EQ(recovered(), std::vector<std::string>());
  ASSERT_EQ(::kill(keeper, SIGCONT), 0);
  ASSERT_TRUE(eventually([&] { return hasEnded(keeper); }));
  expectAllOf(written(), recoveredAudio());
}

}  // namespace
